#pragma once

#include "copy/rescue/rescue_picture.h"
#include "copy/rescue/rescue_run.h"

namespace torvane {

/// The strip in a rescue's window: pixels at 96 to the inch.
inline constexpr int kRescueStripWidth = 820;
inline constexpr int kRescueStripHeight = 40;

/// What a rescue's window shows of it.
struct RescueShown {
    RescueFigures figures;
    RescuePicture picture; ///< of a strip of `kRescueStripWidth` and `kRescueStripHeight`
};

} // namespace torvane
