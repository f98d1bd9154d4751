#pragma once

#include "window/list_cells.h"
#include "window/list_text.h"

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace torvane {

struct DriveRecord;

/// How the drive list stands: by the texts or numbers of one column, or in the order in which the scan found the
/// drives.
struct DriveOrder {
    std::optional<DriveColumn> column; ///< none: the scan's order
    bool descending = false;

    bool operator==(const DriveOrder&) const = default;
};

/// The order after the column's heading was clicked: ascending, then descending, then the scan's again.
[[nodiscard]] DriveOrder orderAfterClick(const DriveOrder& now, DriveColumn clicked);

/// What a row is sorted by.
struct DriveRow {
    const DriveRecord* drive;
    RowTexts cells; ///< by DriveColumn
};

/// `rows` are in the scan's order. Which of them stands first, second ... in `order`: sizes count by their number,
/// texts without regard to case, and equal ones stay as the scan found them.
[[nodiscard]] std::vector<std::size_t> sortedRows(std::span<const DriveRow> rows, const DriveOrder& order);

} // namespace torvane
