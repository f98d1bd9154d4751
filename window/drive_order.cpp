#include "window/drive_order.h"

#include "base/ascii.h"
#include "records/drive_record.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <tuple>

namespace torvane {

namespace {

std::int64_t sectorsOf(const DriveRecord& drive) {
    return drive.bytesPerSector > 0 ? drive.sizeBytes / drive.bytesPerSector : 0;
}

/// Numbers first, then the text.
std::tuple<std::int64_t, std::string> sortKey(const DriveRow& row, DriveColumn column) {
    switch (column) {
    case kDriveColumnSizeSectors:
        return {sectorsOf(*row.drive), {}};
    case kDriveColumnSizeGigabytes:
        return {row.drive->sizeBytes, {}};
    default:
        return {0, lowerAsciiText(row.cells.at(static_cast<std::size_t>(column)))};
    }
}

} // namespace

DriveOrder orderAfterClick(const DriveOrder& now, DriveColumn clicked) {
    if (now.column != clicked) {
        return {.column = clicked, .descending = false};
    }
    return now.descending ? DriveOrder{} : DriveOrder{.column = clicked, .descending = true};
}

std::vector<std::size_t> sortedRows(std::span<const DriveRow> rows, const DriveOrder& order) {
    std::vector<std::size_t> sorted(rows.size());
    std::iota(sorted.begin(), sorted.end(), std::size_t{0});
    if (order.column) {
        std::ranges::stable_sort(sorted, [&](std::size_t left, std::size_t right) {
            const auto leftKey = sortKey(rows[left], *order.column);
            const auto rightKey = sortKey(rows[right], *order.column);
            return order.descending ? rightKey < leftKey : leftKey < rightKey;
        });
    }
    return sorted;
}

} // namespace torvane
