#include "settings/company_info_dialog.h"

#include "resources/resource_ids.h"
#include "settings/company_info_file.h"
#include "ui/colour_scheme.h"
#include "ui/control_text.h"
#include "ui/dialog.h"
#include "ui/edit_text.h"
#include "ui/prompts.h"
#include "ui/window_scale.h"

#include <array>
#include <cstddef>
#include <iterator>
#include <string>

namespace torvane {

namespace {

/// A text with its label. Labels are placed in pixels of 96 to the inch.
struct LabelledText {
    int textId;
    int labelId;
    const char* label;
    RECT labelPlace;
};

constexpr LabelledText kTexts[] = {
    {IDC_COMPANY_NAME, IDC_COMPANY_NAME_LABEL, "Company", {10, 14, 100, 34}},
    {IDC_COMPANY_ADDRESS, IDC_COMPANY_ADDRESS_LABEL, "Address", {10, 48, 100, 68}},
    {IDC_COMPANY_PHONE, IDC_COMPANY_PHONE_LABEL, "Phone", {10, 82, 100, 102}},
};

class CompanyInfoDialog : public Dialog {
  public:
    explicit CompanyInfoDialog(CompanyInfo& info) : Dialog(IDD_COMPANY_INFORMATION), info_(info) {}

  protected:
    bool onInitialise() override {
        SetWindowTextA(window(), "Configure Company Information");
        for (const LabelledText& row : kTexts) {
            SendDlgItemMessageA(window(), row.textId, EM_SETLIMITTEXT, kTextRoom, 0);
        }
        fillTexts();
        saved_ = typedTexts();
        measureTexts();
        for (const LabelledText& row : kTexts) {
            createLabel(row);
        }
        layOut();
        return true;
    }

    void layOut() override {
        sizeToTexts();
        for (const LabelledText& row : kTexts) {
            placeControl(row.labelId, row.labelPlace);
            placeControl(row.textId, textPlace(row));
        }
        const PixelRect last = textPlace(kTexts[std::size(kTexts) - 1]);
        const int top = last.bottom + kMargin;
        placeControl(IDC_EXIT_COMPANY, PixelRect{last.right - kButtonWidth, top, last.right, top + kButtonHeight});
        const int right = last.right - kButtonWidth - kMargin;
        placeControl(IDC_SAVE_COMPANY, PixelRect{right - kButtonWidth, top, right, top + kButtonHeight});
    }

    bool onCommand(int id) override {
        static constexpr CommandRoute<CompanyInfoDialog> kRoutes[] = {
            {IDM_SAVE_COMPANY_INFORMATION, &CompanyInfoDialog::onSave},
            {IDC_SAVE_COMPANY, &CompanyInfoDialog::onSave},
            {IDM_EXIT_COMPANY_INFORMATION, &CompanyInfoDialog::onExit},
            {IDC_EXIT_COMPANY, &CompanyInfoDialog::onExit},
            {IDCANCEL, &CompanyInfoDialog::onExit},
        };
        return route(*this, kRoutes, id);
    }

    // The control's own limit counts characters, of which one takes up to four bytes.
    void onTextChange(int id) override { keepWithinBytes(control(id), kTextRoom); }

    HBRUSH onControlColour(HDC context) override { return colourUponDialog(context); }

  private:
    static constexpr std::size_t kTextRoom = sizeof(CompanyInfo::companyName) - 1;
    static constexpr int kMargin = 14;
    static constexpr int kButtonWidth = 88;
    static constexpr int kButtonHeight = 25;

    /// In the order of `kTexts`.
    using Texts = std::array<std::string, std::size(kTexts)>;

    void fillTexts() {
        setControlText(IDC_COMPANY_NAME, std::string(info_.companyName.view()).c_str());
        setControlText(IDC_COMPANY_ADDRESS, std::string(info_.companyAddress.view()).c_str());
        setControlText(IDC_COMPANY_PHONE, std::string(info_.companyPhone.view()).c_str());
    }

    void createLabel(const LabelledText& row) {
        const HWND label =
            CreateWindowExA(0, "STATIC", "No Text", WS_CHILD | WS_VISIBLE, 0, 0, 0, 0, window(),
                            reinterpret_cast<HMENU>(static_cast<INT_PTR>(row.labelId)), // NOLINT: a child's id
                            GetModuleHandleA(nullptr), nullptr);
        SendMessageA(label, WM_SETFONT, static_cast<WPARAM>(SendMessageA(window(), WM_GETFONT, 0, 0)), FALSE);
        // Directly before its text, so that a screen reader takes it for the text's name.
        SetWindowPos(label, GetWindow(control(row.textId), GW_HWNDPREV), 0, 0, 0, 0,
                     SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
        SetWindowTextA(label, row.label);
    }

    // The template gives all of them one size.
    void measureTexts() {
        RECT place{};
        GetWindowRect(control(IDC_COMPANY_NAME), &place);
        OffsetRect(&place, -place.left, -place.top);
        const PixelRect size = scale().at96(toPixelRect(place));
        textSize_ = {size.width(), size.height()};
    }

    /// Right of its label, with its words on one line with the label's.
    [[nodiscard]] PixelRect textPlace(const LabelledText& row) const {
        constexpr int kInnerTop = 3; // of an edit control, between its edge and its words
        const int left = row.labelPlace.right;
        const int top = row.labelPlace.top - kInnerTop;
        return {left, top, left + textSize_.width, top + textSize_.height};
    }

    void sizeToTexts() {
        const PixelRect last = textPlace(kTexts[std::size(kTexts) - 1]);
        sizeClientArea({last.right + kMargin, last.bottom + kMargin + kButtonHeight + kMargin});
    }

    [[nodiscard]] Texts typedTexts() const {
        Texts texts;
        for (std::size_t i = 0; i < texts.size(); ++i) {
            texts[i] = controlText(control(kTexts[i].textId));
        }
        return texts;
    }

    void onSave() {
        const Texts texts = typedTexts();
        const auto& [name, address, phone] = texts;
        if (SaveCompanyInfo(info_, name, address, phone) != 0) {
            saved_ = texts;
        }
    }

    void onExit() {
        if (typedTexts() == saved_ ||
            prompts::ask("***** COMPANY INFORMATION NOT SAVED *****",
                         "The company information was edited but not saved. Do you want to drop the changes?")) {
            end(1);
        }
    }

    CompanyInfo& info_;
    Texts saved_;          ///< as they are in the file, or were when the dialog opened
    PixelSize textSize_{}; ///< at 96 dots to the inch
};

} // namespace

void configureCompanyInfo(CompanyInfo& info, HWND owner) {
    CompanyInfoDialog(info).runModal(owner);
}

} // namespace torvane
