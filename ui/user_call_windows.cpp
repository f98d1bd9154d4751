#include "ui/user_call_windows.h"

#include "ui/user_call.h"

namespace torvane {

namespace {

bool isProgramInFront() {
    DWORD process = 0;
    GetWindowThreadProcessId(GetForegroundWindow(), &process);
    return process == GetCurrentProcessId();
}

void flash(HWND window, DWORD how) {
    FLASHWINFO info{};
    info.cbSize = sizeof info;
    info.hwnd = window;
    info.dwFlags = how;
    FlashWindowEx(&info);
}

} // namespace

void callUserTo(HWND window, bool good) {
    const UserCall call = userCallFor(good, isProgramInFront());
    if (call.flash) {
        flash(window, FLASHW_ALL | FLASHW_TIMERNOFG);
    }
    MessageBeep(call.sound == UserCall::Sound::kDone ? MB_OK : MB_ICONHAND);
}

void endUserCall(HWND window) {
    flash(window, FLASHW_STOP);
}

} // namespace torvane
