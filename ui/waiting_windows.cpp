#include "ui/waiting.h"

#include "base/owned_handle.h"
#include "base/tool_watch.h"
#include "base/worker_thread.h"
#include "ui/held_commands.h"
#include "ui/prompt_owner.h"
#include "ui/waiting_over.h"
#include "ui/waiting_strip.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <utility>

namespace torvane::waiting {

namespace {

/// What the window's thread and the one that works have in common; the last of them frees it.
struct Work {
    std::function<void()> run;
    UniqueHandle done{CreateEventA(nullptr, TRUE, FALSE, nullptr)};
    std::atomic<bool> left{false};
};

/// Ends the tools of somebody whom nobody waits for.
class LeavingWatch : public ToolWatch {
  public:
    explicit LeavingWatch(const std::atomic<bool>& left) : left_(left) {}
    [[nodiscard]] bool mayBegin() override { return !left_; }
    [[nodiscard]] bool mayGoOn(const ToolAtWork&) override { return !left_; }

  private:
    const std::atomic<bool>& left_;
};

DWORD runWork(Work& work) {
    LeavingWatch watch(work.left);
    const ToolWatchScope watched(watch);
    work.run();
    SetEvent(work.done.get());
    return 0;
}

/// Shows the wait cursor for a scope.
class WaitCursor {
  public:
    WaitCursor() : previous_(SetCursor(LoadCursorA(nullptr, IDC_WAIT))) {}
    ~WaitCursor() { SetCursor(previous_); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

  private:
    HCURSOR previous_;
};

/// Keeps the button down that was clicked last, for as long as its command gives no other sign of life.
class ButtonDown {
  public:
    ButtonDown() {
        POINT mouse{};
        const HWND focus = GetFocus();
        if (focus != nullptr && GetCursorPos(&mouse) != FALSE && WindowFromPoint(mouse) == focus &&
            (SendMessageA(focus, WM_GETDLGCODE, 0, 0) & DLGC_BUTTON) != 0) {
            button_ = focus;
            SendMessageA(button_, BM_SETSTATE, TRUE, 0);
        }
    }
    ~ButtonDown() { release(); }
    ButtonDown(const ButtonDown&) = delete;
    ButtonDown& operator=(const ButtonDown&) = delete;

    void release() {
        if (const HWND button = std::exchange(button_, nullptr); IsWindow(button) != FALSE) {
            SendMessageA(button, BM_SETSTATE, FALSE, 0);
        }
    }

  private:
    HWND button_ = nullptr;
};

/// One wait of the window's thread.
class Wait {
  public:
    Wait(Work& work, HWND window, const char* what) : work_(work), window_(window), what_(what) {}

    /// True when the work has ended; false when the user has left.
    bool untilDoneOrLeft() {
        while (!isDone()) {
            if (strip_.leaveWanted() || held_.wayOutTaken() || quits_) {
                return false;
            }
            const bool quiet = elapsed() < kQuiet;
            MsgWaitForMultipleObjects(1, &done_, FALSE, kPauseMilliseconds,
                                      quiet ? QS_SENDMESSAGE | QS_PAINT : QS_ALLINPUT);
            if (quiet) {
                answerAndPaint();
            } else {
                showStrip();
                dispatchAll();
            }
        }
        return true;
    }

  private:
    /// Until then what a user does stays in the queue, as it does behind any command that is under way.
    static constexpr std::chrono::seconds kQuiet{2};
    static constexpr DWORD kPauseMilliseconds = 50;

    [[nodiscard]] bool isDone() const { return WaitForSingleObject(done_, 0) == WAIT_OBJECT_0; }
    [[nodiscard]] std::chrono::steady_clock::duration elapsed() const {
        return std::chrono::steady_clock::now() - begin_;
    }

    static void answerAndPaint() {
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE | PM_QS_SENDMESSAGE | PM_QS_PAINT) != FALSE) {
            DispatchMessageW(&message);
        }
    }

    void showStrip() {
        button_.release();
        // A minimised window has no room for it; it comes when the window is restored.
        if (!strip_.visible() && window_ != nullptr && IsIconic(window_) == FALSE) {
            ShowWindow(window_, SW_SHOWNA); // a dialog that reads before it is shown
            strip_.show(window_, what_);
        }
        strip_.setSeconds(static_cast<int>(std::chrono::duration_cast<std::chrono::seconds>(elapsed()).count()));
    }

    void dispatchAll() {
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
            if (message.message == WM_QUIT) {
                PostQuitMessage(static_cast<int>(message.wParam));
                quits_ = true;
                return;
            }
            // A timer's box would come between this command's own.
            if (message.message == WM_TIMER && message.lParam == 0 && GetParent(message.hwnd) == nullptr) {
                continue;
            }
            if (IsDialogMessageW(window_, &message) == FALSE) {
                TranslateMessage(&message);
                DispatchMessageW(&message);
            }
        }
    }

    Work& work_;
    HANDLE done_ = work_.done.get();
    HWND window_;
    std::string what_;
    HeldCommands held_;
    WaitingStrip strip_;
    WaitCursor cursor_;
    ButtonDown button_;
    std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    bool quits_ = false;
};

/// The window that the strip lies over: one of this thread, for a job's box in front of it belongs to the job's.
HWND ownWindow(HWND window) {
    while (window != nullptr && GetWindowThreadProcessId(window, nullptr) != GetCurrentThreadId()) {
        window = GetWindow(window, GW_OWNER);
    }
    return window;
}

} // namespace

bool runOver(HWND dialog, const char* what, std::function<void()> work) {
    const auto shared = std::make_shared<Work>();
    shared->run = std::move(work);
    const UniqueHandle thread = startThread([shared] { return runWork(*shared); });
    if (!thread) {
        shared->run(); // nowhere but here
        return true;
    }
    const bool done = Wait(*shared, dialog, what).untilDoneOrLeft();
    shared->left = !done;
    return done;
}

bool run(const char* what, std::function<void()> work) {
    return runOver(ownWindow(prompts::owner()), what, std::move(work));
}

} // namespace torvane::waiting
