#pragma once

#include "base/scale.h"
#include "copy/jobs/rescue_shown.h"

#include <windows.h>

#include <optional>

namespace torvane {

/// The strip's place in the dialog, and the key's below it; pixels at 96 to the inch.
inline constexpr PixelRect kRescueStrip{10, 8, 10 + kRescueStripWidth, 8 + kRescueStripHeight};
inline constexpr PixelRect kRescueKeyPlace{10, 54, 830, 70};

/// Paints a rescue's dialog behind its controls: the strip of the whole drive, empty before the first picture, and the
/// key to it. `font` is the dialog's.
void paintRescueStrip(HDC paintContext, const std::optional<RescueShown>& shown, HFONT font, Scale scale);

} // namespace torvane
