#pragma once

#include "base/scale.h"

#include <windows.h>

#include <objidl.h>

#include <gdiplus.h>

namespace torvane {

/// The size in which a picture made for a screen of `madeFor` dots to the inch shows at `scale`.
[[nodiscard]] PixelSize shownSize(Gdiplus::Image& picture, int madeFor, Scale scale);

/// Draws the whole picture in `size` with its top left corner at (x, y): pixel for pixel where that is its own size,
/// else smoothly enlarged or reduced.
void drawPicture(Gdiplus::Graphics& graphics, Gdiplus::Image& picture, int x, int y, PixelSize size);

} // namespace torvane
