#include "window/list_cells.h"

namespace torvane {

namespace {

constexpr ColourCode kWhite = colour(255, 255, 255);

constexpr CellPaint kPlainCell{colour(0, 0, 128), colour(80, 175, 228)};
constexpr CellPaint kQuietCell{colour(45, 99, 119), kListBackground};
constexpr CellPaint kGoodCell{kWhite, colour(13, 119, 0)};
constexpr CellPaint kBadCell{kWhite, colour(224, 0, 7)};
constexpr CellPaint kWarningCell{kWhite, colour(248, 198, 1)};

// What both lists say by colour in their first column.
CellPaint outcomePaint(std::string_view text) {
    if (text.starts_with("SUC")) {
        return kGoodCell;
    }
    if (text.starts_with("FAI") || text.starts_with("ERR")) {
        return kBadCell;
    }
    return kQuietCell;
}

CellPaint statusPaint(std::string_view text) {
    if (text.starts_with("COM")) {
        return kGoodCell;
    }
    if (text.starts_with("SKI") || text.starts_with("WIP") || text.starts_with("BAD")) {
        return kBadCell;
    }
    return kQuietCell;
}

} // namespace

CellPaint paintWhenSelected(const CellPaint& own, const CellPaint& selected) {
    return own == kPlainCell || own == kQuietCell ? selected : own;
}

CellPaint driveCellPaint(int column, std::string_view text) {
    switch (column) {
    case kDriveColumnModel:
        return text.starts_with("WARN") ? kWarningCell : outcomePaint(text);
    case kDriveColumnSerialNumber:
        return kQuietCell;
    case kDriveColumnStatus:
        return statusPaint(text);
    default:
        return kPlainCell;
    }
}

CellPaint logCellPaint(int column, std::string_view text) {
    if (column != kLogColumnType) {
        return kPlainCell;
    }
    return text.starts_with("TEST") ? kGoodCell : outcomePaint(text);
}

} // namespace torvane
