#include "hex/hex_viewer.h"
#include "tests/component/copy_bench.h"

namespace torvane {
namespace {

using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class HexViewing : public testing::CopyBench {
  protected:
    DriveRecord& openDrive(const std::string& size, const std::string& more = "") {
        bench_.addDrive(R"({"number": 1, "bus": "nvme", "backing": {"pattern": "sector-number"}, "size": )" + size +
                        more + "}");
        return drive(1);
    }
    static std::string text(const HexViewer& viewer) {
        const auto bytes = viewer.bytes();
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }
    std::string lastRead() {
        const auto all = bench_.log("target=drive:1 request=read");
        return all.empty() ? "" : all.back();
    }
};

TEST_F(HexViewing, BeginsAtSectorZero) {
    HexViewer viewer(openDrive("\"1 MiB\""));
    EXPECT_EQ(viewer.sector(), 0U);
    EXPECT_EQ(viewer.sectors(), 2048U);
    EXPECT_THAT(bench_.log("target=drive:1 request=read"), IsEmpty());
    viewer.read();
    EXPECT_THAT(text(viewer), HasSubstr("LBA=000000000000"));
    EXPECT_THAT(lastRead(), HasSubstr("offset=0 length=512"));
    EXPECT_FALSE(viewer.toPrevious());
    EXPECT_EQ(viewer.sector(), 0U);
}

TEST_F(HexViewing, StepsSectorBySectorUpToTheLast) {
    HexViewer viewer(openDrive("1536"));
    EXPECT_TRUE(viewer.toNext());
    EXPECT_TRUE(viewer.toNext());
    viewer.read();
    EXPECT_THAT(text(viewer), HasSubstr("LBA=000000000002"));
    EXPECT_FALSE(viewer.toNext());
    EXPECT_EQ(viewer.sector(), 2U);
    EXPECT_TRUE(viewer.toPrevious());
    EXPECT_EQ(viewer.sector(), 1U);
}

TEST_F(HexViewing, JumpsOverTwentyTerabytes) {
    HexViewer viewer(openDrive("20000000000000"));
    viewer.toScrollPosition(31991);
    EXPECT_EQ(viewer.sector(), 39051513671U);
    viewer.read();
    EXPECT_THAT(text(viewer), HasSubstr("LBA=039051513671"));
    EXPECT_THAT(lastRead(), HasSubstr("offset=19994374999552 length=512"));
    viewer.toScrollPosition(0);
    EXPECT_EQ(viewer.sector(), 0U);
}

TEST_F(HexViewing, ReachesTheLastSectorOfTwentyTerabytes) {
    HexViewer viewer(openDrive("20000000000000"));
    viewer.toScrollPosition(kHexScrollMaximum);
    EXPECT_EQ(viewer.sector(), 39062499999U);
    viewer.read();
    EXPECT_THAT(text(viewer), HasSubstr("LBA=039062499999"));
    EXPECT_FALSE(viewer.toNext());
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(HexViewing, OfLargeSectorsReadsAWholeOneAndShowsItsBeginning) {
    HexViewer viewer(openDrive("\"1 MiB\"", R"(, "sectorSize": 4096)"));
    EXPECT_EQ(viewer.sectors(), 256U);
    viewer.toNext();
    viewer.toNext();
    viewer.read();
    EXPECT_THAT(lastRead(), HasSubstr("offset=8192 length=4096"));
    // The pattern counts units of 512 bytes.
    EXPECT_EQ(text(viewer).substr(0, 16), "LBA=000000000016");
    EXPECT_EQ(text(viewer).substr(496), "LBA=000000000016");
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(HexViewing, AnUnreadableSectorIsMarkedCountedAndLoggedEachTime) {
    DriveRecord& disk = openDrive("\"1 MiB\"", R"(, "faults": {"reads": [{"firstSector": 1}]})");
    HexViewer viewer(disk);
    viewer.toNext();
    for (std::uint64_t times = 1; times <= 3; ++times) {
        viewer.read();
        EXPECT_EQ(text(viewer), testing::unreadable(512));
        EXPECT_EQ(disk.badReadCount, times);
        EXPECT_THAT(events(), SizeIs(times));
    }
    EXPECT_THAT(events(), Each("ERROR: BAD READ BLOCK AT SECTOR: [1]"));
    viewer.toPrevious();
    viewer.read();
    EXPECT_THAT(text(viewer), HasSubstr("LBA=000000000000"));
    EXPECT_THAT(events(), SizeIs(3));
}

TEST_F(HexViewing, AnUnreadableLargeSectorIsMarkedAllOver) {
    HexViewer viewer(openDrive("\"1 MiB\"", R"(, "sectorSize": 4096, "faults": {"reads": [{"firstSector": 0}]})"));
    viewer.read();
    EXPECT_EQ(text(viewer), testing::unreadable(512));
}

TEST_F(HexViewing, WhereTheDriveCannotBePositionedTheLastBytesStay) {
    HexViewer viewer(openDrive("\"1 MiB\"", R"(, "faults": {"seeks": [{"firstSector": 1}]})"));
    viewer.read();
    viewer.toNext();
    viewer.read();
    EXPECT_THAT(text(viewer), HasSubstr("LBA=000000000000"));
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(HexViewing, OfADriveWithoutSectorsStaysAtZero) {
    DriveRecord& disk = openDrive("512");
    disk.sizeBytes = 0;
    disk.bytesPerSector = 0;
    HexViewer viewer(disk);
    EXPECT_FALSE(viewer.toNext());
    viewer.toScrollPosition(31991);
    EXPECT_EQ(viewer.sector(), 0U);
    viewer.read();
    EXPECT_THAT(text(viewer), HasSubstr("LBA=000000000000"));
}

} // namespace
} // namespace torvane
