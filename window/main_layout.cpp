#include "window/main_layout.h"

#include "health/panel_model.h"
#include "resources/resource_ids.h"

#include <algorithm>
#include <array>

namespace torvane {

namespace {

constexpr int kLeft = 10;
constexpr int kRight = kLeastClientWidth - 10;

constexpr int kLogListHeight = 162;

// Headings and two rows.
constexpr int kLeastListHeight = 62;

// Each dial has a line of text under its caption, as wide as the caption. An NVMe drive's lines of numbers are longer
// and stand above the dials.
constexpr int kValueTextTop = 245;
constexpr int kValueTextWidth = 140;
constexpr int kValueTextHeight = 13;

constexpr int kMessageHeight = 17; // one line in large letters, or in small ones
constexpr int kCommandsLineTop = 276;
constexpr int kGroupNameTop = 278;
constexpr int kGroupNameHeight = 13;

// Seven columns of buttons, three rows. The columns of one group stand closer together than two groups.
constexpr int kButtonWidth = 154;
constexpr int kButtonHeight = 25;
constexpr int kFirstRowTop = 292;
constexpr int kRowStep = 29;
constexpr int kGroupGap = 14;
constexpr int kColumnGap = 6;

constexpr int kCopyingColumn = 2;
constexpr int kMountingColumn = 4;
constexpr int kLogLabelColumn = 5; ///< beside the log's button

struct Button {
    int id;
    int column;
    int row;
};

constexpr std::array<Button, 17> kButtons{{
    {IDC_LOAD_DRIVES, 0, 0},
    {IDC_QUICK_DISK_VIEW, 0, 1},
    {IDC_CREATE_REPORT, 0, 2},
    {IDC_SHORT_READ_TEST, 1, 0},
    {IDC_CRITICAL_READ_TEST, 1, 1},
    {IDC_NIST_READ_TEST, 1, 2},
    {IDC_DRIVE_TO_DRIVE_CLONE, 2, 0},
    {IDC_DRIVE_TO_IMAGE, 3, 0},
    {IDC_CREATE_FORENSIC_IMAGE, 2, 1},
    {IDC_IMAGE_TO_DRIVE, 3, 1},
    {IDC_ENABLE_MOUNTING, 4, 0},
    {IDC_DISABLE_MOUNTING, 4, 1},
    {IDC_DATA_WORK_ORDER, 5, 0},
    {IDC_DATA_SERVICES, 5, 1},
    {IDC_TERMINATE_TASK, 6, 0},
    {IDC_EXIT, 6, 1},
    {IDC_LOG_TOGGLE, 6, 2},
}};

struct Group {
    int nameId;
    int column; ///< its first
};

constexpr std::array<Group, 6> kGroups{{
    {IDC_GROUP_DRIVES, 0},
    {IDC_GROUP_READ_TESTS, 1},
    {IDC_GROUP_COPYING, kCopyingColumn},
    {IDC_GROUP_MOUNTING, kMountingColumn},
    {IDC_GROUP_SERVICES, 5},
    {IDC_GROUP_PROGRAM, 6},
}};

constexpr int columnLeft(int column) {
    // The copying group is the one of two columns, so every column behind its first has one narrow gap before it.
    const int narrowGaps = column > kCopyingColumn ? 1 : 0;
    return kLeft + column * (kButtonWidth + kGroupGap) - narrowGaps * (kGroupGap - kColumnGap);
}

constexpr int rowTop(int row) {
    return kFirstRowTop + row * kRowStep;
}

static_assert(columnLeft(6) + kButtonWidth == kRight);

PixelRect buttonPlace(const Button& button) {
    const int left = columnLeft(button.column);
    const int top = rowTop(button.row);
    return {left, top, left + kButtonWidth, top + kButtonHeight};
}

constexpr PixelRect raisedBy(const PixelRect& place, int way) {
    return {place.left, place.top - way, place.right, place.bottom - way};
}

void placeScanControls(std::vector<PlacedControl>& controls) {
    controls.push_back({IDC_DRIVES_LABEL, {kLeft, 4, 612, 18}});
    controls.push_back({IDC_ACTIVE_DRIVE, {620, 4, kRight, 18}});
    // In place of the active drive while something is counted.
    controls.push_back({IDC_SCAN_STATUS, {620, 4, 900, 18}});
    controls.push_back({IDC_SCAN_PROGRESS, {908, 5, kRight, 17}});
}

void placeHealthTexts(std::vector<PlacedControl>& controls) {
    constexpr int kMessageTop = kValueTextTop + kValueTextHeight;
    controls.push_back({IDC_HEALTH_MESSAGE, {kLeft, kMessageTop, kRight, kMessageTop + kMessageHeight}});
    controls.push_back({IDC_GAUGE_TEXT, {1056, 122, kRight, 140}});
    constexpr int kLongTextTop = kValueTextTop - kLongTextAbove;
    constexpr int kLifeLeft = kLongTextLeft + kLongTextWidth + 10;
    controls.push_back({IDC_OWN_VERDICT, {kLifeLeft, kLongTextTop, 1050, kLongTextTop + kValueTextHeight}});
    for (int dial = 0; dial < 6; ++dial) {
        const int left = dial * kDialStep;
        controls.push_back(
            {IDC_VALUE_TEXT_1 + dial, {left, kValueTextTop, left + kValueTextWidth, kValueTextTop + kValueTextHeight}});
    }
}

void placeCommands(std::vector<PlacedControl>& controls) {
    controls.push_back({IDC_COMMANDS_LINE, {kLeft, kCommandsLineTop, kRight, kCommandsLineTop + 2}});
    for (const Group& group : kGroups) {
        const int left = columnLeft(group.column);
        controls.push_back(
            {group.nameId, {left, kGroupNameTop, left + kButtonWidth, kGroupNameTop + kGroupNameHeight}});
    }
    for (const Button& button : kButtons) {
        controls.push_back({button.id, buttonPlace(button)});
    }
    const int labelTop = rowTop(2) + 6;
    const int labelLeft = columnLeft(kLogLabelColumn);
    controls.push_back({IDC_LOG_TOGGLE_LABEL, {labelLeft, labelTop, labelLeft + kButtonWidth, labelTop + 14}});
}

// In the third row, which the copying and mounting columns leave free.
void placeReadTestProgress(std::vector<PlacedControl>& controls) {
    const int top = rowTop(2) + 6;
    const int barLeft = columnLeft(kCopyingColumn) + 120;
    controls.push_back({IDC_WIDE_PROGRESS_LABEL, {columnLeft(kCopyingColumn), top, barLeft - 8, top + 14}});
    controls.push_back({IDC_WIDE_PROGRESS, {barLeft, top, columnLeft(kLogLabelColumn) - kGroupGap, top + 14}});
}

} // namespace

PixelRect logListPlace(int closedClientHeight) {
    return {kDriveListPlace.left, closedClientHeight, kDriveListPlace.right, closedClientHeight + kLogListHeight};
}

ListLosses shareOut(int excess, bool logOpen) {
    ListLosses losses;
    if (logOpen) {
        losses.logList = std::clamp(excess, 0, kLogListHeight - kLeastListHeight);
    }
    losses.driveList = std::clamp(excess - losses.logList, 0, kDriveListPlace.height() - kLeastListHeight);
    return losses;
}

PixelRect driveListPlace(const ListLosses& losses) {
    return {kDriveListPlace.left, kDriveListPlace.top, kDriveListPlace.right,
            kDriveListPlace.bottom - losses.driveList};
}

PixelRect healthPanelPlace(const ListLosses& losses) {
    return raisedBy(kHealthPanelPlace, losses.driveList);
}

std::vector<PlacedControl> layOutMainWindow(const ListLosses& losses) {
    std::vector<PlacedControl> controls;
    placeHealthTexts(controls);
    placeCommands(controls);
    placeReadTestProgress(controls);
    for (PlacedControl& control : controls) {
        control.place = raisedBy(control.place, losses.driveList);
    }
    placeScanControls(controls);
    return controls;
}

} // namespace torvane
