#pragma once

#include "discovery/drive_record.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace torvane {

/// A colour as GDI keeps it: 0x00BBGGRR.
using ColourCode = std::uint32_t;

[[nodiscard]] constexpr ColourCode colour(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    return static_cast<ColourCode>(red) | static_cast<ColourCode>(green) << 8 | static_cast<ColourCode>(blue) << 16;
}

/// Background of both lists.
inline constexpr ColourCode kListBackground = colour(136, 196, 236);

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

/// The drive's size in its own sectors, whatever their size; "Not Available" when the sector size is not known.
[[nodiscard]] std::string sizeSectorsText(const DriveRecord& record);

/// The drive's size in units of 2^30 bytes, two decimals.
[[nodiscard]] std::string sizeGigabytesText(const DriveRecord& record);

struct CellPaint {
    ColourCode text;
    ColourCode background;

    bool operator==(const CellPaint&) const = default;
};

/// Colours of a cell by its column and the word that its text starts with, case-sensitive.
[[nodiscard]] CellPaint driveCellPaint(int column, std::string_view text);
[[nodiscard]] CellPaint logCellPaint(int column, std::string_view text);

} // namespace torvane
