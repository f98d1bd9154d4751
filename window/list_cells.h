#pragma once

#include "base/colours.h"
#include "records/drive_record.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace torvane {

/// The drive list's columns.
enum DriveColumn : int {
    kDriveColumnModel,
    kDriveColumnSerialNumber,
    kDriveColumnSizeSectors,
    kDriveColumnSizeGigabytes,
    kDriveColumnInterface,
    kDriveColumnStatus,
};

/// The log list's columns.
enum LogColumn : int { kLogColumnType, kLogColumnDate, kLogColumnTime, kLogColumnMessage };

/// The text of a drive's "Interface" cell. A record with `kBusCodeOwnText` and standard SMART data gets "SATA USB" as
/// its bus text first. Empty for a bus code outside the list.
[[nodiscard]] std::string interfaceText(DriveRecord& record);

struct CellPaint {
    ColourCode text;
    ColourCode background;

    bool operator==(const CellPaint&) const = default;
};

/// Colours of a cell by its column and the word that its text starts with, case-sensitive.
[[nodiscard]] CellPaint driveCellPaint(int column, std::string_view text);
[[nodiscard]] CellPaint logCellPaint(int column, std::string_view text);

} // namespace torvane
