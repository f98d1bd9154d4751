#pragma once

#include <windows.h>

namespace torvane {

// The colours of windows: the program's own, or the system's few where the user has asked for high contrast
// (SPI_GETHIGHCONTRAST). Everything is asked for anew with each drawing; a window is told of a change by
// WM_SYSCOLORCHANGE. Pictures that tell by patterns and shapes keep their colours.

[[nodiscard]] bool isHighContrast();

[[nodiscard]] COLORREF dialogGround();
/// Upon `dialogGround`.
[[nodiscard]] COLORREF dialogText();
/// For a text upon `dialogGround` whose colour stresses what its words say.
[[nodiscard]] COLORREF stressedText(COLORREF own);
/// A brush of `dialogGround`; it stays the system's or the program's.
[[nodiscard]] HBRUSH dialogGroundBrush();

/// Answers WM_CTLCOLORDLG, -STATIC and -BTN of a window upon `dialogGround`: sets the colours of `context`, and returns
/// the brush.
[[nodiscard]] HBRUSH colourUponDialog(HDC context);

/// `own`, the background of a list.
[[nodiscard]] COLORREF listGround(COLORREF own);

} // namespace torvane
