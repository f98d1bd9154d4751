#include "workbench/hooks/hook_functions.h"
#include "workbench/hooks/hooks.h"

#include <array>

namespace torvane::bench {
namespace {

[[nodiscard]] bool isHighContrast() {
    const auto session = currentSession();
    return session && session->description().highContrast;
}

/// White on black, as in the system's own "High Contrast Black".
[[nodiscard]] COLORREF highContrastColour(int index) {
    switch (index) {
    case COLOR_WINDOWTEXT:
    case COLOR_BTNTEXT:
    case COLOR_INFOTEXT:
        return RGB(255, 255, 255);
    case COLOR_HIGHLIGHT:
        return RGB(26, 235, 255);
    case COLOR_GRAYTEXT:
        return RGB(63, 242, 63);
    default:
        return RGB(0, 0, 0);
    }
}

BOOL WINAPI systemParametersInfoA(UINT action, UINT parameter, PVOID data, UINT flags) {
    if (action == SPI_GETHIGHCONTRAST && data != nullptr && isHighContrast()) {
        static_cast<HIGHCONTRASTA*>(data)->dwFlags = HCF_HIGHCONTRASTON | HCF_AVAILABLE;
        return TRUE;
    }
    return SystemParametersInfoA(action, parameter, data, flags);
}

DWORD WINAPI getSysColor(int index) {
    return isHighContrast() ? highContrastColour(index) : GetSysColor(index);
}

// The system's brushes stay its own: nobody may delete them.
HBRUSH WINAPI getSysColorBrush(int index) {
    if (!isHighContrast()) {
        return GetSysColorBrush(index);
    }
    const int stock = highContrastColour(index) == RGB(255, 255, 255) ? WHITE_BRUSH : BLACK_BRUSH;
    return static_cast<HBRUSH>(GetStockObject(stock));
}

} // namespace

std::span<const Replacement> lookReplacements() {
    static const std::array kReplacements = {
        Replacement{"SystemParametersInfoA", hookAddress(systemParametersInfoA)},
        Replacement{"GetSysColor", hookAddress(getSysColor)},
        Replacement{"GetSysColorBrush", hookAddress(getSysColorBrush)},
    };
    return kReplacements;
}

} // namespace torvane::bench
