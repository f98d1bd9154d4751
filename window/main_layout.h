#pragma once

#include "base/scale.h"

#include <vector>

namespace torvane {

/// A control's place in the main window's client area at 96 dots to the inch, as everything here is.
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

/// What the lists give of their height where the work area is too low for the window.
struct ListLosses {
    int driveList = 0;
    int logList = 0;
    bool operator==(const ListLosses&) const = default;
};

/// Shares out how much too high the window is: the log list gives first when it is open, then the drive list, and each
/// keeps some rows. What remains is to be scrolled.
[[nodiscard]] ListLosses shareOut(int excess, bool logOpen);

[[nodiscard]] PixelRect driveListPlace(const ListLosses& losses);

/// The log list starts at the bottom of the closed window's client area, so it shows only when the window is taller.
[[nodiscard]] PixelRect logListPlace(int closedClientHeight);

/// What the gauges, their captions and the lamp cover while the drive list has its whole height: y 140 to 245.
inline constexpr PixelRect kHealthPanelPlace{0, 140, kLeastClientWidth, 245};
[[nodiscard]] PixelRect healthPanelPlace(const ListLosses& losses);

/// Every control of the main window's template but the health panel's placeholder. What lies below the drive list moves
/// up by what that has lost.
[[nodiscard]] std::vector<PlacedControl> layOutMainWindow(const ListLosses& losses = {});

} // namespace torvane
