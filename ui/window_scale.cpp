#include "ui/window_scale.h"

namespace torvane {

namespace {

constexpr const char* kScaleProperty = "TorvaneScale";

/// A function of user32 that older versions of the system lack; then null.
template <typename Function>
Function fromUser32(const char* name) {
    return reinterpret_cast<Function>(
        reinterpret_cast<void (*)()>(GetProcAddress(GetModuleHandleW(L"user32.dll"), name)));
}

int sharedDpi() {
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return dpi;
}

} // namespace

Scale monitorScaleOf(HWND window) {
    static const auto getDpiForWindow = fromUser32<UINT(WINAPI*)(HWND)>("GetDpiForWindow");
    const UINT ofWindow = getDpiForWindow == nullptr ? 0 : getDpiForWindow(window);
    const int dpi = ofWindow == 0 ? sharedDpi() : static_cast<int>(ofWindow);
    return dpi > 0 ? Scale{dpi} : Scale{};
}

Scale scaleOf(HWND window) {
    const HANDLE laidOutFor = GetPropA(GetAncestor(window, GA_ROOT), kScaleProperty);
    return laidOutFor == nullptr ? monitorScaleOf(window)
                                 : Scale{static_cast<int>(reinterpret_cast<INT_PTR>(laidOutFor))};
}

void rememberScale(HWND window, Scale scale) {
    SetPropA(window, kScaleProperty, reinterpret_cast<HANDLE>(static_cast<INT_PTR>(scale.dpi)));
}

void forgetScale(HWND window) {
    RemovePropA(window, kScaleProperty);
}

int systemMetric(int index, Scale scale) {
    static const auto getSystemMetricsForDpi = fromUser32<int(WINAPI*)(int, UINT)>("GetSystemMetricsForDpi");
    return getSystemMetricsForDpi == nullptr ? GetSystemMetrics(index)
                                             : getSystemMetricsForDpi(index, static_cast<UINT>(scale.dpi));
}

void scaleByOurselves(HWND dialog) {
    static const auto setBehaviour = fromUser32<BOOL(WINAPI*)(HWND, UINT, UINT)>("SetDialogDpiChangeBehavior");
    constexpr UINT kDisableAll = 1; // DDC_DISABLE_ALL
    if (setBehaviour != nullptr) {
        setBehaviour(dialog, kDisableAll, kDisableAll);
    }
}

} // namespace torvane
