#include "discovery/bus_type.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <string_view>

namespace torvane {
namespace {

TEST(BusTypeText, NamesEveryBusOfTheTable) {
    constexpr std::array<std::string_view, 18> kNames = {
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
    for (std::size_t i = 0; i < kNames.size(); ++i) {
        EXPECT_EQ(busTypeText(static_cast<std::int32_t>(i)), kNames[i]) << "bus type " << i;
    }
}

TEST(BusTypeText, NumbersOutsideTheTableAreUnknown) {
    for (const std::int32_t busType :
         {-1, 18, 127, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()}) {
        EXPECT_EQ(busTypeText(busType), "Unknown") << "bus type " << busType;
    }
}

} // namespace
} // namespace torvane
