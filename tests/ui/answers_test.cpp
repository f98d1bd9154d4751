// How soon the program's windows answer, whatever it is doing.

#include "tests/ui/copy_ui_test.h"
#include "tests/ui/driver/input.h"
#include "tests/ui/driver/shell_dialogs.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace torvane::driver {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

/// Asks the main window, and the dialog or box in front of it, every 10 ms, and keeps the worst answer of each moment.
class AnswerProbe {
  public:
    explicit AnswerProbe(const char* title) : title_(title), thread_([this] { ask(); }) {}
    ~AnswerProbe() {
        ended_ = true;
        thread_.join();
    }
    AnswerProbe(const AnswerProbe&) = delete;
    AnswerProbe& operator=(const AnswerProbe&) = delete;

    struct Moment {
        std::string name;
        Milliseconds worst{};
        int answers = 0;
    };

    /// What is asked from now on belongs to this moment.
    void enter(const std::string& name) {
        const std::lock_guard lock(mutex_);
        moments_.push_back({name});
    }
    [[nodiscard]] std::vector<Moment> moments() const {
        const std::lock_guard lock(mutex_);
        return moments_;
    }

  private:
    void ask() {
        while (!ended_) {
            if (const HWND window = FindWindowA("#32770", title_); window != nullptr) {
                question(window);
                if (const HWND front = GetLastActivePopup(window); front != window) {
                    question(front);
                }
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
    // The moment is the one in which the question was asked.
    void question(HWND window) {
        std::size_t moment = 0;
        {
            const std::lock_guard lock(mutex_);
            if (moments_.empty()) {
                return;
            }
            moment = moments_.size() - 1;
        }
        constexpr UINT kLongest = 20'000;
        DWORD_PTR answer = 0;
        const auto asked = Clock::now();
        // A window that has gone meanwhile answers nothing.
        if (SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_NORMAL, kLongest, &answer) == 0 &&
            IsWindow(window) == FALSE) {
            return;
        }
        const Milliseconds taken = Clock::now() - asked;
        const std::lock_guard lock(mutex_);
        moments_[moment].worst = std::max(moments_[moment].worst, taken);
        ++moments_[moment].answers;
    }

    const char* title_;
    mutable std::mutex mutex_;
    std::vector<Moment> moments_;
    std::atomic<bool> ended_ = false;
    std::thread thread_;
};

constexpr int kStartTest = 1043;
constexpr int kExitTest = 1042;
constexpr WPARAM kAbout = 16;
constexpr WPARAM kEditMessages = 32;
constexpr WPARAM kManual = 96;

class AnswersTest : public CopyUiTest {
  protected:
    /// Tools and drives that take their time.
    [[nodiscard]] BenchFolder layOutBench() const override {
        BenchFolder folder = copyBench();
        folder.bench(
            R"({"tools": {"diskpart": {"delayMilliseconds": 300}, "powershell": {"delayMilliseconds": 700}}})");
        folder.drive("1-source", R"({"number": 1, "bus": "nvme", "size": "70 MiB", "road": "nvme-query",
            "backing": {"pattern": "noise", "seed": 7},
            "identity": {"product": "SOURCE", "revision": "1", "serial": "SRC-1"},
            "faults": {"slow": [{"firstSector": 0, "sectors": 143360, "milliseconds": 300}]}})");
        folder.drive("2-target", R"({"number": 2, "bus": "nvme", "size": "80 MiB", "road": "nvme-query",
            "identity": {"product": "TARGET", "revision": "1", "serial": "TGT-2"},
            "faults": {"slow": [{"firstSector": 0, "sectors": 163840, "milliseconds": 300}]}})");
        return folder;
    }

    void closeDialog(const Window& dialog) const {
        dialog.awaitPainted();
        dialog.post(WM_COMMAND, IDCANCEL);
        await("the dialog has closed", [&] { return !dialog.exists(); });
    }
    void openAndClose(const std::function<void()>& open) const {
        open();
        closeDialog(program().awaitDialog());
    }
    void runReadTest() const {
        torvane().press(kShortTest);
        const Window dialog = program().awaitDialog();
        press(dialog.child(kStartTest));
        std::this_thread::sleep_for(std::chrono::seconds(1));
        press(dialog.child(kExitTest));
        program().awaitBoxOver(dialog).answer("Yes");
        await("the dialog has closed", [&] { return !dialog.exists(); });
    }
    void terminateClone() const {
        const CopyDialogWindow dialog = openClone("SOURCE");
        startOnto(dialog, "TARGET");
        dialog.awaitStatusStart(" Status: ");
        dialog.terminate();
        dialog.awaitStatus(" User Terminated Image");
        std::this_thread::sleep_for(std::chrono::seconds(2)); // the explosion plays
        dialog.leave();
    }
    void verify(const CopyDialogWindow& dialog) const {
        constexpr int kKnownMd5 = 1322;
        SendMessageA(dialog.window().child(kKnownMd5).handle(), WM_SETTEXT, 0,
                     reinterpret_cast<LPARAM>("00000000000000000000000000000000"));
        dialog.start();
        program().awaitBoxOver(dialog.window()).answer("OK");
        dialog.leave();
    }
    void caseInformation(const CopyDialogWindow& dialog) const {
        constexpr WPARAM kCase = 1301;
        dialog.window().post(WM_COMMAND, kCase);
        Window box;
        await("the case dialog opens", [&] {
            box = program().dialog().value_or(Window());
            return box.text() == "Case Information";
        });
        closeDialog(box);
        dialog.leave();
    }
    void image() const {
        const CopyDialogWindow dialog(program().awaitDialog(), kImageIds);
        dialog.start();
        dialog.awaitStatus(" Image  SUCCESSFULLY Completed");
        dialog.leave();
    }
};

// The system's own dialogs are as quick as the system.
TEST_F(AnswersTest, AreSoonAtEveryMoment) {
    AnswerProbe probe("Torvane ver 1.2 June 20, 2022 7:40 AM");
    probe.enter("start");
    static_cast<void>(program());
    probe.enter("scan");
    torvane().loadDrives();
    probe.enter("another active drive");
    for (const int row : {0, 1, 2, 0}) {
        torvane().driveList().click(row);
        torvane().window().awaitPainted();
    }
    probe.enter("log panel");
    torvane().press(kLogToggle);
    torvane().press(kLogToggle);
    probe.enter("rows copied");
    for (const int id : {kMenuCopyDriveRow, kMenuSelectLogRows, kMenuCopyLogRows}) {
        torvane().command(id);
    }
    probe.enter("company information");
    openAndClose([&] { torvane().command(kMenuCompany); });
    probe.enter("about");
    openAndClose([&] { torvane().window().post(WM_SYSCOMMAND, kAbout); });
    probe.enter("messages");
    openAndClose([&] { torvane().window().post(WM_SYSCOMMAND, kEditMessages); });
    probe.enter("manual");
    torvane().window().post(WM_SYSCOMMAND, kManual);
    await("powershell has opened the manual", [&] {
        return !program().benchLog({"request=powershell", "Torvane-manual.html"}).empty();
    });
    torvane().window().settle();
    probe.enter("hex viewer");
    torvane().driveList().click(1);
    openAndClose([&] { torvane().press(kQuickDiskView); });
    probe.enter("BitLocker's dialog");
    openAndClose([&] { torvane().command(kMenuBitLocker); });
    probe.enter("report");
    torvane().press(kCreateReport);
    program().awaitBox().answer("OK");
    probe.enter("read test");
    runReadTest();
    probe.enter("mounting");
    torvane().press(kDisableMounting);
    program().awaitBox().answer("OK");
    probe.enter("clone that is terminated");
    terminateClone();
    probe.enter("(system's folder browser)");
    tickOnly("SOURCE");
    const std::filesystem::path folder = emptyFolder("answers");
    pressCopyCommand(kDriveToImage);
    chooseFolder(program(), folder);
    probe.enter("image");
    image();
    probe.enter("(system's open-file dialog)");
    const CopyDialogWindow verification = openVerifyImage(onlyFile(folder, ".img"));
    probe.enter("verification of an image");
    verify(verification);
    probe.enter("(system's folder browser again)");
    const CopyDialogWindow forensic = openForensic("SOURCE", folder);
    probe.enter("case information");
    caseInformation(forensic);
    probe.enter("exit");
    expectEnd();
    torvane().press(kExit);
    program().awaitBox().answer("Yes");
    program().awaitBox().answer("No");
    program().awaitEnd();

    // On an idle machine 50; a busy one is none the wiser.
    constexpr Milliseconds kBound{500};
    for (const AnswerProbe::Moment& moment : probe.moments()) {
        std::printf("%-28s %8.1f ms worst of %5d answers\n", moment.name.c_str(), moment.worst.count(), moment.answers);
        EXPECT_GT(moment.answers, 0) << moment.name;
        if (moment.name.front() != '(') {
            EXPECT_LT(moment.worst, kBound) << moment.name;
        }
    }
}

} // namespace
} // namespace torvane::driver
