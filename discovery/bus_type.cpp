#include "discovery/bus_type.h"

#include <array>
#include <cstddef>

namespace torvane {

std::string_view busTypeText(std::int32_t busType) {
    static constexpr std::array<std::string_view, 18> kTexts = {
        "Unknown",
        "SCSI",
        "ATAPI",
        "ATA",
        "IEEE 1394",
        "SSA",
        "Fibre Channel",
        "USB",
        "RAID",
        "iSCSI",
        "Serial Attached SCSI",
        "Serial ATA",
        "Secure Digital",
        "Multi-Media Card",
        "Virtual Disk",
        "Virtual File Disk",
        "Storage Spaces",
        "NVM Express",
    };
    if (busType < 0 || static_cast<std::size_t>(busType) >= kTexts.size()) {
        return kTexts.front();
    }
    return kTexts[static_cast<std::size_t>(busType)];
}

} // namespace torvane
