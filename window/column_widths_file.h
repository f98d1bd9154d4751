#pragma once

#include "window/column_widths.h"

namespace torvane {

/// As they were kept; as they ship when there is no such file, or none that can be made sense of.
[[nodiscard]] ColumnWidths loadColumnWidths();

/// Keeps them in the folder in which the program works. Where no file can be made they are forgotten, in silence: the
/// user was told at the start that the folder is read-only.
void keepColumnWidths(const ColumnWidths& widths);

} // namespace torvane
