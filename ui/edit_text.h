#pragma once

#include <windows.h>

#include <cstddef>

namespace torvane {

/// To be called whenever the text of an edit control has changed (EN_CHANGE): while it takes more than `limit` bytes in
/// the code page, takes away what was typed or pasted last, which ends at the caret, and beeps. Whole characters go,
/// and both halves of a line break. Returns true when anything was taken away.
bool keepWithinBytes(HWND edit, std::size_t limit, UINT codePage = CP_ACP);

} // namespace torvane
