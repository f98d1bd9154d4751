#pragma once

#include "ui/owned.h"

namespace torvane {

/// A font whose characters are all equally wide, for text that stands in columns. `height`: pixels of a line of it;
/// `width`: pixels of a character, 0 as the font's design has it.
[[nodiscard]] UniqueFont makeFixedFont(int height, int width = 0);

} // namespace torvane
