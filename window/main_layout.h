#pragma once

#include "base/scale.h"

#include <vector>

namespace torvane {

struct PlacedControl {
    int id;
    PixelRect place;
};

/// The main window's outer size, log panel closed and open.
inline constexpr int kMainWindowWidth = 1190;
inline constexpr int kMainWindowHeight = 440;
inline constexpr int kMainWindowHeightWithLog = 620;

/// The smallest client area that a window of kMainWindowWidth x kMainWindowHeight has on the systems we run on: the
/// frame, caption and menu of Windows 10 at 96 pixels to the inch.
inline constexpr int kLeastClientWidth = 1174;
inline constexpr int kLeastClientHeight = 381;

/// The lists reach to x = 1180, past the right edge of a narrower client area: their columns are that wide.
inline constexpr PixelRect kDriveListPlace{10, 20, 1180, 122};

/// The log list starts at the bottom of the closed window's client area, so it shows only when the window is taller.
[[nodiscard]] PixelRect logListPlace(int closedClientHeight);

/// What the gauges, their captions and the lamp cover: y 140 to 245.
inline constexpr PixelRect kHealthPanelPlace{0, 140, kLeastClientWidth, 245};

/// Every control of the main window's template but the health panel's placeholder.
[[nodiscard]] std::vector<PlacedControl> layOutMainWindow();

} // namespace torvane
