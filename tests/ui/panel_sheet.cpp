#include "tests/ui/panel_sheet.h"

#include "tests/ui/driver/input.h"

#include <vector>

namespace torvane::driver {
namespace {

constexpr COLORREF kBackground = RGB(218, 223, 234);
constexpr COLORREF kGapColour = RGB(70, 80, 100);
constexpr int kGap = 6;

/// The panel's height in the main window, at 96 dots to the inch: from the drive list's end to the line above the
/// commands.
constexpr int kPanelTop = 122;
constexpr int kPanelBottom = 273;

RECT panelRect(const Window& window) {
    const RECT area = window.clientRect();
    const int dpi = static_cast<int>(GetDpiForSystem());
    return {area.left, area.top + MulDiv(kPanelTop, dpi, 96), area.right, area.top + MulDiv(kPanelBottom, dpi, 96)};
}

/// The row as the list shows it, and the panel of its drive.
Picture drivePicture(const TorvaneWindow& torvane, int row) {
    const ListView list = torvane.driveList();
    const RECT first = list.cellRect(row, 0);
    RECT rowRect = list.window().clientRect();
    rowRect.top = first.top;
    rowRect.bottom = first.bottom;
    list.click(row);
    parkMouse();
    torvane.window().awaitPainted();
    const Picture panel = Picture::atRest(panelRect(torvane.window()));
    const Picture name = Picture::ofScreen(rowRect);
    Picture both(panel.width(), name.height() + panel.height(), kBackground);
    both.draw(name, 0, 0);
    both.draw(panel, 0, name.height());
    return both;
}

} // namespace

Picture healthPanelSheet(const TorvaneWindow& torvane) {
    std::vector<Picture> drives;
    for (int row = 0; row < torvane.driveList().rowCount(); ++row) {
        drives.push_back(drivePicture(torvane, row));
    }
    if (drives.empty()) {
        throw Failure("no drive is listed");
    }
    const int step = drives.front().height() + kGap;
    Picture sheet(drives.front().width(), step * static_cast<int>(drives.size()) - kGap, kGapColour);
    int top = 0;
    for (const Picture& drive : drives) {
        sheet.draw(drive, 0, top);
        top += step;
    }
    return sheet;
}

} // namespace torvane::driver
