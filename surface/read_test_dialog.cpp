#include "surface/read_test_dialog.h"

#include "base/format.h"
#include "resources/resource_ids.h"
#include "state/active_drive.h"
#include "state/app_state.h"
#include "surface/read_test_texts.h"
#include "surface/read_test_workers.h"
#include "ui/colour_scheme.h"
#include "ui/dialog.h"
#include "ui/prompts.h"

#include <commctrl.h>

#include <algorithm>
#include <atomic>
#include <string>

namespace torvane {

namespace {

// At 96 dots to the inch.
constexpr int kMargin = 10;
constexpr int kLabelHeight = 20;
constexpr int kProgressTop = 40;
constexpr int kProgressHeight = 14;
constexpr int kButtonHeight = 50;
constexpr int kLeastHeight = kProgressTop + kProgressHeight + kMargin + kButtonHeight + kMargin;

/// The dialog's labels and bar as a test's worker sees them: calls reach them until the dialog goes.
class DialogDisplay : public ReadTestDisplay {
  public:
    void attach(HWND status, HWND progress) {
        status_ = status;
        progress_ = progress;
    }
    void detach() { attach(nullptr, nullptr); }

    // Sent to another thread's window, which may go meanwhile: then the message is not delivered.
    void setStatus(std::string_view text) override {
        const std::string ownText(text); // ends in a NUL
        send(status_, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(ownText.c_str()));
    }
    void startProgress(int maximum) override {
        setProgress(0);
        send(progress_, PBM_SETRANGE32, 0, maximum);
    }
    void setProgress(int position) override { send(progress_, PBM_SETPOS, static_cast<WPARAM>(position), 0); }

  private:
    static void send(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (window != nullptr) {
            SendMessageA(window, message, wParam, lParam);
        }
    }

    std::atomic<HWND> status_{nullptr};
    std::atomic<HWND> progress_{nullptr};
};

class ReadTestDialog : public Dialog {
  public:
    ReadTestDialog(AppState& state, ReadTestKind kind, DriveRecord& drive)
        : Dialog(IDD_READ_TEST), state_(state), kind_(kind), drive_(drive) {}

  protected:
    bool onInitialise() override {
        const RECT area = clientArea();
        size_ = {scale().at96(static_cast<int>(area.right)),
                 std::max(scale().at96(static_cast<int>(area.bottom)), kLeastHeight)};
        layOut();
        setControlText(IDC_READ_TEST_TITLE, formatText("Testing: %s", drive_.model.c_str()).c_str());
        setControlText(IDC_READ_TEST_STATUS, "Status: Idle...");
        const char* const word = readTestCaptionWord(kind_);
        if (word == nullptr) {
            prompts::stop("****** CRITICAL SYSTEM ERROR ******", "Invalid Read Test Type");
            end(0);
            return true;
        }
        SetWindowTextA(window(), formatText("%s Read Test", word).c_str());
        display_->attach(control(IDC_READ_TEST_STATUS), control(IDC_READ_TEST_PROGRESS));
        return true;
    }

    void layOut() override {
        sizeClientArea({size_.width, size_.height});
        const LONG half = size_.width / 2;
        placeBox(IDC_READ_TEST_TITLE, kMargin, kMargin, half - 15, kLabelHeight);
        placeBox(IDC_READ_TEST_STATUS, half + 5, kMargin, half - 15, kLabelHeight);
        placeBox(IDC_READ_TEST_PROGRESS, kMargin, kProgressTop, size_.width - 2 * kMargin, kProgressHeight);
        const LONG top = size_.height - kMargin - kButtonHeight;
        const LONG width = (size_.width - 4 * kMargin) / 3;
        placeBox(IDC_READ_TEST_START, kMargin, top, width, kButtonHeight);
        placeBox(IDC_READ_TEST_TERMINATE, width + 2 * kMargin, top, width, kButtonHeight);
        placeBox(IDC_READ_TEST_EXIT, size_.width - kMargin - width, top, width, kButtonHeight);
    }

    bool onCommand(int id) override {
        static constexpr CommandRoute<ReadTestDialog> kRoutes[] = {
            {IDC_READ_TEST_START, &ReadTestDialog::onStart},
            {IDC_READ_TEST_TERMINATE, &ReadTestDialog::onTerminate},
            {IDC_READ_TEST_EXIT, &ReadTestDialog::onExit},
            {IDCANCEL, &ReadTestDialog::onExit},
        };
        // A box is open above the dialog: its answer comes first.
        return IsWindowEnabled(window()) == FALSE || route(*this, kRoutes, id);
    }

    HBRUSH onControlColour(HDC context) override { return colourUponDialog(context); }

    void onDestroy() override { display_->detach(); }

  private:
    void placeBox(int id, LONG left, LONG top, LONG width, LONG height) {
        placeControl(id, RECT{left, top, left + width, top + height});
    }

    // Also while a test runs: each run counts and stops for itself.
    void onStart() { startReadTest(state_, kind_, drive_, display_); }

    void onTerminate() {
        if (state_.jobs.active() && prompts::ask("****** TEST CURRENTLY RUNNING ******",
                                                 "Your test is still running. Do you wish to terminate the test?")) {
            state_.jobs.askToStop();
        }
    }

    void onExit() {
        if (mayLeave()) {
            end(1);
        }
    }

    bool mayLeave() {
        const bool leaves =
            state_.jobs.active()
                ? prompts::ask("****** TEST CURRENTLY RUNNING ******",
                               "Your test is still running. Do you wish to terminate the test and exit?")
                : prompts::ask("****** EXIT READ TEST ******", "You are about to exit Read Test, is that your intent?");
        if (leaves) {
            state_.jobs.askToStop();
        }
        return leaves;
    }

    AppState& state_;
    ReadTestKind kind_;
    DriveRecord& drive_;
    PixelSize size_{}; ///< of the client area at 96 dots to the inch: the template's, with room for all
    std::shared_ptr<DialogDisplay> display_ = std::make_shared<DialogDisplay>();
};

} // namespace

void RunReadTestDialog(AppState& state, HWND owner, ReadTestKind kind) {
    DriveRecord* const drive = requireActiveDrive(state, noDriveForReadTestText(kind).c_str());
    if (drive == nullptr) {
        return;
    }
    ReadTestDialog(state, kind, *drive).runModal(owner);
}

} // namespace torvane
