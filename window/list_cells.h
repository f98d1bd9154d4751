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

struct CellPaint {
    ColourCode text;
    ColourCode background;

    bool operator==(const CellPaint&) const = default;
};

/// Colours of a cell by its column and the word that its text starts with, case-sensitive.
[[nodiscard]] CellPaint driveCellPaint(int column, std::string_view text);
[[nodiscard]] CellPaint logCellPaint(int column, std::string_view text);

/// What the cell of a selected row gets, where the row's own colours are `selected`: one that tells something by its
/// colour goes on telling it.
[[nodiscard]] CellPaint paintWhenSelected(const CellPaint& own, const CellPaint& selected);

} // namespace torvane
