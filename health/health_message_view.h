#pragma once

#include <windows.h>

namespace torvane {

/// Draws the text of the owner-drawn control `item` upon `background`: on one line in `large` where it fits, otherwise
/// on as many lines in `small` as there is room for. Text beyond them is cut with an ellipsis; returns false then.
bool drawHealthMessage(const DRAWITEMSTRUCT& item, HBRUSH background, HFONT large, HFONT small);

} // namespace torvane
