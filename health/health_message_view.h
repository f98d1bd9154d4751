#pragma once

#include <windows.h>

namespace torvane {

struct DriveRecord;

/// Draws the text of the owner-drawn control `item` upon `background`: on one line in `large` where it fits, otherwise
/// on as many lines in `small` as there is room for. Text beyond them is cut with an ellipsis; returns false then.
bool drawHealthMessage(const DRAWITEMSTRUCT& item, HBRUSH background, HFONT large, HFONT small);

/// Draws the text of the owner-drawn control `item`, an NVMe drive's own numbers, upon `background` in the control's
/// font; in red where they say that the drive fails, in brown where it wears out. `drive` may be null.
void drawNvmeLife(const DRAWITEMSTRUCT& item, HBRUSH background, const DriveRecord* drive);

} // namespace torvane
