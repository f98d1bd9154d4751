#include "ui/window_scale.h"

namespace torvane {

namespace {

int sharedDpi() {
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return dpi;
}

} // namespace

Scale scaleOf(HWND window) {
    using GetDpiForWindowType = UINT(WINAPI*)(HWND);
    static const auto getDpiForWindow = reinterpret_cast<GetDpiForWindowType>(
        reinterpret_cast<void (*)()>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "GetDpiForWindow")));
    const UINT ofWindow = getDpiForWindow == nullptr ? 0 : getDpiForWindow(window);
    const int dpi = ofWindow == 0 ? sharedDpi() : static_cast<int>(ofWindow);
    return dpi > 0 ? Scale{dpi} : Scale{};
}

} // namespace torvane
