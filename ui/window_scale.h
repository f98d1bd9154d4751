#pragma once

#include "base/scale.h"

#include <windows.h>

namespace torvane {

/// The scale of the monitor that the window is on (GetDpiForWindow, from Windows 10 1607 on; before that the one that
/// all monitors share, LOGPIXELSX).
[[nodiscard]] Scale scaleOf(HWND window);

[[nodiscard]] inline RECT toRect(const PixelRect& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

[[nodiscard]] inline PixelRect toPixelRect(const RECT& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

} // namespace torvane
