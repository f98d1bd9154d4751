#include "ui/text_dialog.h"

#include "base/line_ends.h"
#include "resources/resource_ids.h"
#include "ui/control_text.h"
#include "ui/dialog.h"
#include "ui/fixed_font.h"

namespace torvane {

namespace {

class TextDialog : public Dialog {
  public:
    TextDialog(const char* title, const std::string& text) : Dialog(IDD_TEXT), title_(title), text_(text) {}

  protected:
    bool onInitialise() override {
        constexpr int kLineHeight = 15;
        font_ = makeFixedFont(scale().px(kLineHeight)); // tables of a text stand in columns
        SendMessageW(control(IDC_TEXT), WM_SETFONT, reinterpret_cast<WPARAM>(font_.get()), FALSE);
        setWindowText(window(), title_);
        setWindowText(control(IDC_TEXT), withWindowsLineEnds(text_));
        SetFocus(control(IDCANCEL)); // in the text everything would be selected
        return false;
    }

    bool onCommand(int id) override {
        static constexpr CommandRoute<TextDialog> kRoutes[] = {
            {IDCANCEL, &TextDialog::onClose},
        };
        return route(*this, kRoutes, id);
    }

  private:
    void onClose() { end(1); }

    const char* title_;
    const std::string& text_;
    UniqueFont font_;
};

} // namespace

void showText(const char* title, const std::string& text, HWND owner) {
    TextDialog(title, text).runModal(owner);
}

} // namespace torvane
