#pragma once

#include "base/scale.h"

#include <windows.h>

namespace torvane {

/// What a dialog sends to each of its children when its scale has changed: the dots to the inch before (`wParam`) and
/// now (`lParam`). Their fonts have changed then.
inline constexpr UINT kScaleChangedMessage = WM_APP + 101;

/// The scale of the window's monitor (GetDpiForWindow, from Windows 10 1607 on; before that the one that all monitors
/// share, LOGPIXELSX).
[[nodiscard]] Scale monitorScaleOf(HWND window);

/// The scale that the window, or the top-level window that it is in, is laid out for; before it is, that of its
/// monitor. May be asked from any thread.
[[nodiscard]] Scale scaleOf(HWND window);

/// Notes what a top-level window is laid out for, until it is forgotten, which must be before the window goes.
void rememberScale(HWND window, Scale scale);
void forgetScale(HWND window);

/// GetSystemMetrics for that scale.
[[nodiscard]] int systemMetric(int index, Scale scale);

/// Keeps the system from changing a dialog by itself when its monitor's scale changes (SetDialogDpiChangeBehavior, from
/// Windows 10 1703 on).
void scaleByOurselves(HWND dialog);

[[nodiscard]] inline RECT toRect(const PixelRect& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

[[nodiscard]] inline PixelRect toPixelRect(const RECT& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

} // namespace torvane
