#pragma once

#include <windows.h>

namespace torvane {

struct DriveRecord;

/// Draws the text of the owner-drawn control `item` upon the dialog's background: on one line in `large` where it fits,
/// otherwise on as many lines in `small` as there is room for. Text beyond them is cut with an ellipsis; returns false
/// then.
bool drawHealthMessage(const DRAWITEMSTRUCT& item, HFONT large, HFONT small);

/// Draws the text of the owner-drawn control `item`, what the drive says of itself, in its font; in red where that is
/// that it fails, in brown where it wears out. `drive` may be null.
void drawOwnVerdict(const DRAWITEMSTRUCT& item, const DriveRecord* drive);

} // namespace torvane
