#include "window/list_cells.h"

#include <array>

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

// Indexed by bus code - 2000.
constexpr std::array<std::string_view, 4> kInterfaceNames{"USB", "SATA", "FILE", "NVME"};

} // namespace

std::string interfaceText(DriveRecord& record) {
    const bool standard = record.smartType == kSmartTypeStandard;
    if (record.busCode == kBusCodeOwnText) {
        if (standard) {
            record.busText.assign("SATA USB");
        }
        return std::string(record.busText.view());
    }
    if (record.busCode < kBusCodeUsb || record.busCode > kBusCodeNvme) {
        return {};
    }
    if (standard) {
        return record.busCode == kBusCodeUsb ? "SATA USB" : "SATA";
    }
    return std::string(kInterfaceNames[static_cast<std::size_t>(record.busCode - kBusCodeUsb)]);
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
