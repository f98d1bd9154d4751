#pragma once

#include "base/scale.h"
#include "ui/owned.h"

namespace torvane {

/// The program's icon resource in that size, in pixels: the image that was drawn for it, or the next larger one
/// reduced. Empty when there is none.
[[nodiscard]] UniqueIcon programIcon(int resourceId, PixelSize size);

} // namespace torvane
