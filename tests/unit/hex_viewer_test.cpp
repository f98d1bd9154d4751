#include "hex/hex_viewer.h"

#include "copy/engine/block_layout.h"
#include "tests/unit/patterned_drive.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace torvane {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::PatternedDrive;
using ::testing::SizeIs;

class HexViewing : public ::testing::Test {
  protected:
    HexViewer view(std::int64_t bytes, std::int32_t sectorSize = 512) {
        drive_.sizeBytes = bytes;
        drive_.bytesPerSector = sectorSize;
        return {drive_, io_, [this](const std::string& text) { log_.push_back(text); }};
    }
    void failAt(std::uint64_t offset, TransferOutcome outcome) {
        io_.fate = [=](std::uint64_t at) { return at == offset ? outcome : TransferOutcome::kWhole; };
    }

    static std::string text(const HexViewer& viewer) { return PatternedDrive::textOf(viewer.bytes()); }
    static std::string unreadable() {
        std::vector<std::byte> bytes(kHexViewBytes);
        fillWithUnreadableMarker(bytes);
        return PatternedDrive::textOf(bytes);
    }

    PatternedDrive io_;
    DriveRecord drive_;
    std::vector<std::string> log_;
};

TEST_F(HexViewing, BeginsAtSectorZero) {
    HexViewer viewer = view(1048576);
    EXPECT_EQ(viewer.sector(), 0U);
    EXPECT_EQ(viewer.sectors(), 2048U);
    EXPECT_THAT(io_.reads, IsEmpty());
    viewer.read();
    EXPECT_THAT(text(viewer), HasSubstr("LBA=000000000000"));
    EXPECT_THAT(io_.reads, ElementsAre(PatternedDrive::Transfer{0, 512}));
    EXPECT_FALSE(viewer.toPrevious());
    EXPECT_EQ(viewer.sector(), 0U);
}

TEST_F(HexViewing, StepsSectorBySectorUpToTheLast) {
    HexViewer viewer = view(1536);
    EXPECT_TRUE(viewer.toNext());
    EXPECT_TRUE(viewer.toNext());
    viewer.read();
    EXPECT_THAT(text(viewer), HasSubstr("LBA=000000000002"));
    EXPECT_FALSE(viewer.toNext());
    EXPECT_EQ(viewer.sector(), 2U);
    EXPECT_TRUE(viewer.toPrevious());
    EXPECT_EQ(viewer.sector(), 1U);
}

TEST_F(HexViewing, GoesToASector) {
    HexViewer viewer = view(1048576);
    viewer.toSector(77);
    EXPECT_EQ(viewer.sector(), 77U);
    viewer.read();
    EXPECT_THAT(io_.reads, ElementsAre(PatternedDrive::Transfer{77 * 512, 512}));
}

TEST_F(HexViewing, JumpsOverTwentyTerabytes) {
    HexViewer viewer = view(20000000000000);
    viewer.toScrollPosition(31991);
    EXPECT_EQ(viewer.sector(), 39051513671U);
    viewer.read();
    EXPECT_THAT(text(viewer), HasSubstr("LBA=039051513671"));
    EXPECT_THAT(io_.reads, ElementsAre(PatternedDrive::Transfer{19994374999552, 512}));
    viewer.toScrollPosition(0);
    EXPECT_EQ(viewer.sector(), 0U);
}

TEST_F(HexViewing, ReachesTheLastSectorOfTwentyTerabytes) {
    HexViewer viewer = view(20000000000000);
    viewer.toScrollPosition(kHexScrollMaximum);
    EXPECT_EQ(viewer.sector(), 39062499999U);
    viewer.read();
    EXPECT_THAT(text(viewer), HasSubstr("LBA=039062499999"));
    EXPECT_FALSE(viewer.toNext());
    EXPECT_THAT(log_, IsEmpty());
}

TEST_F(HexViewing, OfLargeSectorsReadsAWholeOneAndShowsItsBeginning) {
    HexViewer viewer = view(1048576, 4096);
    EXPECT_EQ(viewer.sectors(), 256U);
    viewer.toNext();
    viewer.toNext();
    viewer.read();
    EXPECT_THAT(io_.reads, ElementsAre(PatternedDrive::Transfer{8192, 4096}));
    // The pattern counts units of 512 bytes.
    EXPECT_EQ(text(viewer).substr(0, 16), "LBA=000000000016");
    EXPECT_EQ(text(viewer).substr(496), "LBA=000000000016");
    EXPECT_THAT(log_, IsEmpty());
}

TEST_F(HexViewing, AnUnreadableSectorIsMarkedCountedAndLoggedEachTime) {
    failAt(512, TransferOutcome::kFailed);
    HexViewer viewer = view(1048576);
    viewer.toNext();
    for (std::uint64_t times = 1; times <= 3; ++times) {
        viewer.read();
        EXPECT_EQ(text(viewer), unreadable());
        EXPECT_EQ(drive_.badReadCount, times);
        EXPECT_THAT(log_, SizeIs(times));
    }
    EXPECT_THAT(log_, Each("BAD READ BLOCK AT SECTOR: [1]"));
    viewer.toPrevious();
    viewer.read();
    EXPECT_THAT(text(viewer), HasSubstr("LBA=000000000000"));
    EXPECT_THAT(log_, SizeIs(3));
}

TEST_F(HexViewing, AnUnreadableLargeSectorIsMarkedAllOver) {
    failAt(0, TransferOutcome::kFailed);
    HexViewer viewer = view(1048576, 4096);
    viewer.read();
    EXPECT_EQ(text(viewer), unreadable());
}

TEST_F(HexViewing, WhereTheDriveCannotBePositionedTheLastBytesStay) {
    failAt(512, TransferOutcome::kNotReached);
    HexViewer viewer = view(1048576);
    viewer.read();
    viewer.toNext();
    viewer.read();
    EXPECT_THAT(text(viewer), HasSubstr("LBA=000000000000"));
    EXPECT_THAT(log_, IsEmpty());
}

TEST_F(HexViewing, OfADriveWithoutSectorsStaysAtZero) {
    HexViewer viewer = view(0, 0);
    EXPECT_FALSE(viewer.toNext());
    viewer.toScrollPosition(31991);
    EXPECT_EQ(viewer.sector(), 0U);
    viewer.read();
    EXPECT_THAT(text(viewer), HasSubstr("LBA=000000000000"));
}

} // namespace
} // namespace torvane
