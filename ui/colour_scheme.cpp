#include "ui/colour_scheme.h"

#include "base/colours.h"
#include "ui/owned.h"

namespace torvane {

bool isHighContrast() {
    HIGHCONTRASTA wanted{};
    wanted.cbSize = sizeof(wanted);
    return SystemParametersInfoA(SPI_GETHIGHCONTRAST, sizeof(wanted), &wanted, 0) != FALSE &&
           (wanted.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

COLORREF dialogGround() {
    return isHighContrast() ? GetSysColor(COLOR_WINDOW) : kDialogBackground;
}

COLORREF dialogText() {
    return isHighContrast() ? GetSysColor(COLOR_WINDOWTEXT) : RGB(0, 0, 0);
}

COLORREF stressedText(COLORREF own) {
    return isHighContrast() ? GetSysColor(COLOR_WINDOWTEXT) : own;
}

HBRUSH dialogGroundBrush() {
    static const UniqueBrush own{CreateSolidBrush(kDialogBackground)};
    return isHighContrast() ? GetSysColorBrush(COLOR_WINDOW) : own.get();
}

HBRUSH colourUponDialog(HDC context) {
    SetTextColor(context, dialogText());
    SetBkColor(context, dialogGround());
    return dialogGroundBrush();
}

COLORREF listGround(COLORREF own) {
    return isHighContrast() ? GetSysColor(COLOR_WINDOW) : own;
}

} // namespace torvane
