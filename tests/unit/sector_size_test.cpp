#include "records/sector_size.h"

#include <gtest/gtest.h>

#include <limits>

namespace torvane {
namespace {

TEST(SectorSize, IsWhatTheDriveTold) {
    for (const std::int32_t told : {1, 512, 520, 4096, std::numeric_limits<std::int32_t>::max()}) {
        DriveRecord drive;
        drive.bytesPerSector = told;
        EXPECT_EQ(usableSectorSize(told), told);
        EXPECT_EQ(sectorSizeOf(drive), static_cast<std::uint64_t>(told));
    }
}

TEST(SectorSize, IsTheUsualOneWhereTheDriveToldNothingUsable) {
    for (const std::int32_t told : {0, -1, -4096, std::numeric_limits<std::int32_t>::min()}) {
        DriveRecord drive;
        drive.bytesPerSector = told;
        EXPECT_EQ(usableSectorSize(told), 512);
        EXPECT_EQ(sectorSizeOf(drive), 512U);
    }
}

} // namespace
} // namespace torvane
