#include "tests/ui/driver/input.h"

#include "tests/ui/driver/wait.h"

#include <cstdlib>
#include <vector>

namespace torvane::driver {
namespace {

void inject(const INPUT& input) {
    INPUT copy = input;
    if (SendInput(1, &copy, sizeof copy) != 1) {
        throw Failure("the system takes no input");
    }
}

INPUT mouseInput(DWORD flags) {
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = flags;
    return input;
}

/// A button's change at that place, whatever the system has made of the mouse since it was moved there: a window that
/// opens under it may draw it back.
INPUT mouseInputAt(POINT place, DWORD flags) {
    constexpr LONG kWholeScreen = 65535; // of absolute coordinates
    INPUT input = mouseInput(flags | MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE);
    input.mi.dx = MulDiv(place.x, kWholeScreen, GetSystemMetrics(SM_CXSCREEN));
    input.mi.dy = MulDiv(place.y, kWholeScreen, GetSystemMetrics(SM_CYSCREEN));
    return input;
}

INPUT keyInput(WORD key, bool up) {
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = key;
    input.ki.wScan = static_cast<WORD>(MapVirtualKeyW(key, MAPVK_VK_TO_VSC));
    input.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0U;
    return input;
}

bool pointsAt(POINT place) {
    POINT now{};
    return GetCursorPos(&now) != FALSE && now.x == place.x && now.y == place.y;
}

void moveMouse(POINT place) {
    await("the mouse stands at its place",
          [place] { return pointsAt(place) || (SetCursorPos(place.x, place.y), false); });
}

/// Two clicks at one place are two clicks: the second comes when it can no longer be taken for half of a double click.
void injectClick(POINT place, DWORD down, DWORD up) {
    static POINT lastPlace{-1, -1};
    static std::chrono::steady_clock::time_point lastTime;
    constexpr std::chrono::milliseconds kMargin{100};
    if (std::abs(place.x - lastPlace.x) <= GetSystemMetrics(SM_CXDOUBLECLK) &&
        std::abs(place.y - lastPlace.y) <= GetSystemMetrics(SM_CYDOUBLECLK)) {
        std::this_thread::sleep_until(lastTime + std::chrono::milliseconds(GetDoubleClickTime()) + kMargin);
    }
    inject(mouseInputAt(place, down));
    inject(mouseInputAt(place, up));
    lastPlace = place;
    lastTime = std::chrono::steady_clock::now();
}

/// Under Wine a box may stand below the dialog that it disables, as the system counts, while the screen shows it above:
/// then clicks would go to the dialog. Puts the box where it is seen.
void raiseAboveOwner(const Window& window, POINT place) {
    HWND box = GetAncestor(window.handle(), GA_ROOT);
    HWND above = GetAncestor(WindowFromPoint(place), GA_ROOT);
    if (box != nullptr && above != nullptr && GetWindow(box, GW_OWNER) == above && IsWindowEnabled(above) == FALSE) {
        SetWindowPos(box, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_ASYNCWINDOWPOS);
    }
}

void requireReachable(const Window& window, POINT place) {
    // What a command shows or frees when it ends may still be hidden or disabled.
    if (!waitUntil([&] { return window.visible() || !window.exists(); }) || !window.exists()) {
        throw Failure("cannot be clicked, is not visible: " + window.describe());
    }
    if (!waitUntil([&] { return window.enabled() || !window.exists(); }) || !window.exists()) {
        throw Failure("cannot be clicked, is disabled: " + window.describe());
    }
    // A window that has only just appeared may not be on top yet.
    const auto onTop = [&] { return WindowFromPoint(place) == window.handle(); };
    if (!waitUntil(onTop, std::chrono::milliseconds(100))) {
        raiseAboveOwner(window, place);
    }
    if (!waitUntil(onTop)) {
        throw Failure("cannot be clicked: " + window.describe() + " is covered by " +
                      Window(WindowFromPoint(place)).describe());
    }
}

/// True when keys go to the thread that `window` belongs to.
bool hasKeyboard(const Window& window) {
    return GetWindowThreadProcessId(GetForegroundWindow(), nullptr) ==
           GetWindowThreadProcessId(window.handle(), nullptr);
}

/// False too for a button that went away together with its box. It is asked in short turns: a question that is under
/// way when the button goes gets no answer as long as its thread is busy with the command.
bool isPushed(const Window& button) {
    constexpr UINT kTurnMilliseconds = 300;
    DWORD_PTR state = 0;
    bool answered = false;
    const auto settled = waitUntil([&] {
        answered = SendMessageTimeoutW(button.handle(), BM_GETSTATE, 0, 0, SMTO_NORMAL, kTurnMilliseconds, &state) != 0;
        return answered || !button.exists();
    });
    if (!settled) {
        throw Failure("does not answer: " + button.describe());
    }
    return answered && (state & BST_PUSHED) != 0;
}

// As a user with the keyboard does it: a window that is scrolled shows the control that gets the focus.
void bringIntoSight(const Window& button) {
    const Window window(GetParent(button.handle()));
    if (window.enabled() && !inside(button.rect(), window.clientRect())) {
        window.send(WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(button.handle()), TRUE);
        window.settle();
    }
}

} // namespace

void clickAt(const Window& window, POINT place, MouseButton button) {
    const bool left = button == MouseButton::kLeft;
    requireReachable(window, place);
    moveMouse(place);
    injectClick(place, left ? MOUSEEVENTF_LEFTDOWN : MOUSEEVENTF_RIGHTDOWN,
                left ? MOUSEEVENTF_LEFTUP : MOUSEEVENTF_RIGHTUP);
    window.settle();
}

void press(const Window& button) {
    bringIntoSight(button);
    const POINT place = centre(button.rect());
    requireReachable(button, place);
    moveMouse(place);
    inject(mouseInputAt(place, MOUSEEVENTF_LEFTDOWN));
    const bool pushed = waitUntil([&] { return isPushed(button); });
    inject(mouseInputAt(place, MOUSEEVENTF_LEFTUP));
    if (!pushed) {
        throw Failure("does not go down when it is pressed: " + button.describe());
    }
    // The command runs while the release is dealt with: the answer comes when it has ended or opened a box.
    await("the button came up again", [&] { return !isPushed(button); });
}

void drag(const Window& window, POINT from, POINT to) {
    requireReachable(window, from);
    moveMouse(from);
    inject(mouseInput(MOUSEEVENTF_LEFTDOWN));
    // A window that follows the mouse deals with one move before the next comes.
    constexpr int kSteps = 10;
    for (int step = 1; step <= kSteps; ++step) {
        moveMouse({from.x + (to.x - from.x) * step / kSteps, from.y + (to.y - from.y) * step / kSteps});
        window.settle();
    }
    inject(mouseInputAt(to, MOUSEEVENTF_LEFTUP));
    window.settle();
}

void clickBlindly(POINT place) {
    moveMouse(place);
    inject(mouseInput(MOUSEEVENTF_LEFTDOWN));
    inject(mouseInput(MOUSEEVENTF_LEFTUP));
    const Window under(WindowFromPoint(place));
    if (under.exists()) {
        under.settle();
    }
}

void hoverAt(POINT place) {
    moveMouse(place);
}

void parkMouse() {
    moveMouse({GetSystemMetrics(SM_CXSCREEN) - 1, GetSystemMetrics(SM_CYSCREEN) - 1});
}

void pressKey(const Window& window, WORD key, WORD modifier) {
    // A key goes to nobody while the keyboard passes from one window to the next.
    await("the keyboard is the program's", [&] { return hasKeyboard(window); });
    if (modifier != 0) {
        inject(keyInput(modifier, false));
    }
    inject(keyInput(key, false));
    inject(keyInput(key, true));
    if (modifier != 0) {
        inject(keyInput(modifier, true));
    }
    window.settle();
}

void bringToFront(const Window& window) {
    await("the window has the keyboard",
          [&] { return GetForegroundWindow() == window.handle() || (SetForegroundWindow(window.handle()), false); });
}

Window focused(const Window& window) {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    if (GetGUIThreadInfo(GetWindowThreadProcessId(window.handle(), nullptr), &info) == FALSE) {
        throw Failure("the window's thread is gone");
    }
    return Window(info.hwndFocus);
}

} // namespace torvane::driver
