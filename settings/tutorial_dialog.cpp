#include "settings/tutorial_dialog.h"

#include "resources/resource_ids.h"
#include "settings/tutorial.h"
#include "ui/colour_scheme.h"
#include "ui/dialog.h"
#include "ui/resource_image.h"
#include "ui/scrolling.h"

#include <optional>

namespace torvane {

namespace {

// At 96 dots to the inch. The controls stand in a strip under the picture.
constexpr int kMargin = 12;
constexpr int kButtonWidth = 96;
constexpr int kButtonHeight = 26;
constexpr int kStripHeight = kButtonHeight + 2 * kMargin;

// How far right of the screen's middle the dialog opens.
constexpr int kRightOfMiddle = 40;

class TutorialDialog : public Dialog {
  public:
    explicit TutorialDialog(bool prevented) : Dialog(IDD_TUTORIAL), prevented_(prevented) {}

  protected:
    bool onInitialise() override {
        CheckDlgButton(window(), IDC_TUTORIAL_PREVENT, prevented_ ? BST_CHECKED : BST_UNCHECKED);
        layOut();
        placeOnScreen();
        SetFocus(control(IDC_TUTORIAL_CONTINUE));
        return false;
    }

    void layOut() override {
        picture_.emplace(IDR_TUTORIAL_PICTURE, "tutorial.png", scale());
        const PixelSize picture = scale().at96(picture_->size());
        const SIZE size{picture.width, picture.height + kStripHeight};
        sizeClientArea(size);
        const LONG top = size.cy - kMargin - kButtonHeight;
        const LONG buttonLeft = size.cx - kMargin - kButtonWidth;
        placeControl(IDC_TUTORIAL_PREVENT, RECT{kMargin, top, buttonLeft - kMargin, top + kButtonHeight});
        placeControl(IDC_TUTORIAL_CONTINUE, RECT{buttonLeft, top, buttonLeft + kButtonWidth, top + kButtonHeight});
    }

    bool onCommand(int id) override {
        static constexpr CommandRoute<TutorialDialog> kRoutes[] = {
            {IDC_TUTORIAL_CONTINUE, &TutorialDialog::onContinue},
            {IDCANCEL, &TutorialDialog::onClose},
        };
        return route(*this, kRoutes, id);
    }

    bool onPaint() override {
        const PaintDc paint(window());
        const POINT by = scrolledBy(window());
        picture_->draw(paint.get(), -by.x, -by.y);
        return true;
    }

    HBRUSH onControlColour(HDC context) override { return colourUponDialog(context); }

  private:
    void placeOnScreen() {
        RECT place{};
        GetWindowRect(window(), &place);
        const int left = (GetSystemMetrics(SM_CXSCREEN) - (place.right - place.left)) / 2 + scale().px(kRightOfMiddle);
        const int top = (GetSystemMetrics(SM_CYSCREEN) - (place.bottom - place.top)) / 2;
        SetWindowPos(window(), nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        keepInWorkArea(window());
    }

    [[nodiscard]] bool isPrevented() const { return IsDlgButtonChecked(window(), IDC_TUTORIAL_PREVENT) == BST_CHECKED; }

    // A file that cannot be written is no reason to hold the user up: the tutorial will show again.

    void onContinue() {
        saveTutorialFlag(kTutorialFileName, isPrevented() ? kTutorialHidden : kTutorialShown);
        end(1);
    }

    // Esc or the close box: a tick is a decision all the same, without one nothing is written.
    void onClose() {
        if (isPrevented()) {
            saveTutorialFlag(kTutorialFileName, kTutorialHidden);
        }
        end(0);
    }

    bool prevented_;                       ///< when it opens
    std::optional<ResourceImage> picture_; ///< once laid out
};

} // namespace

void ShowTutorialIfWanted(HWND owner) {
    if (loadTutorialFlag(kTutorialFileName) != kTutorialShown) {
        return;
    }
    // What the tutorial explains stands behind it; without it the program had no button in the task bar either.
    ShowWindow(owner, SW_SHOW);
    TutorialDialog(false).runModal(owner);
}

void showTutorial(HWND owner) {
    TutorialDialog(loadTutorialFlag(kTutorialFileName) != kTutorialShown).runModal(owner);
}

} // namespace torvane
