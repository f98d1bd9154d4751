#include "base/bytes.h"
#include "discovery/disk_identity.h"
#include "tests/component/copy_bench.h"

#include <windows.h>

namespace torvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::noise;
using ::testing::SizeIs;
using testing::writeFile;

/// Images with a partition table, onto a drive whose volume T: comes with that table.
class NewTable : public testing::CopyBench {
  protected:
    static constexpr std::size_t kBlocks = 6;
    static constexpr std::size_t kVolumeAt = 3 * kBlock;

    /// An MBR with one partition, and noise behind it. Its layout is Microsoft's: signature at 440, entries of 16 bytes
    /// at 446 (type at 4, first sector and sectors at 8 and 12).
    static std::string diskContent() {
        std::string bytes = noise(3, 0, kBlocks * kBlock);
        const std::span sector(reinterpret_cast<std::uint8_t*>(bytes.data()), 512);
        std::ranges::fill(sector, std::uint8_t{0});
        storeLe<std::uint32_t>(sector, 440, 0x12345678);
        sector[446 + 4] = 7;
        storeLe<std::uint32_t>(sector, 446 + 8, kVolumeAt / 512);
        storeLe<std::uint32_t>(sector, 446 + 12, kBlock / 512);
        sector[510] = 0x55;
        sector[511] = 0xAA;
        return bytes;
    }

    void openDrive(const std::string& faults = "{}") {
        writeFile("disk.img", diskContent());
        bench_.addDrive(R"({"number": 2, "bus": "nvme", "identity": {"product": "Target", "serial": "T1"}, "size": )" +
                        std::to_string(8 * kBlock) + R"(, "faults": )" + faults +
                        R"(, "volumes": [{"letter": "T", "appears": "with its table", "extents": [{"offset": )" +
                        std::to_string(kVolumeAt) + R"(, "length": )" + std::to_string(kBlock) + "}]}]}");
        destination_ = &drive(2);
        order_.kind = CopyKind::kImageToDrive;
        order_.destination = destination_;
        order_.path = (std::filesystem::current_path() / "disk.img").string();
    }

    static bool isMounted() { return GetDriveTypeA("T:\\") == DRIVE_FIXED; }
    [[nodiscard]] std::vector<std::string> requests() const {
        return bench_.log("target=drive:2 request=IOCTL_DISK_UPDATE_PROPERTIES");
    }
    static std::string updateFails(const char* error) {
        return std::string(R"({"requests": [{"request": "IOCTL_DISK_UPDATE_PROPERTIES", "error": ")") + error +
               R"("}]})";
    }

    DriveRecord* destination_ = nullptr;
};

TEST_F(NewTable, IsReadByTheSystemBeforeTheOutcomeIsShown) {
    openDrive();
    bool mountedWhenShown = false;
    display_.onStatus = [&](std::string_view text) {
        if (text == " Image To Drive SUCCESSFULLY Completed") {
            mountedWhenShown = isMounted();
        }
    };
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_EQ(content(2, 0, kBlocks * kBlock), diskContent());
    EXPECT_TRUE(mountedWhenShown);
    EXPECT_THAT(requests(), SizeIs(1)) << "once";
    const std::vector<std::string> all = bench_.log();
    const auto place = [&](const std::string& text) {
        return std::ranges::find_if(all, [&](const std::string& line) { return line.find(text) != std::string::npos; });
    };
    EXPECT_LT(place("target=drive:2 request=flush"), place("request=IOCTL_DISK_UPDATE_PROPERTIES"));
    EXPECT_EQ(lastDriveStatus(*destination_), "COMPLETED");
}

TEST_F(NewTable, IsTheOneThatTheDriveIsKnownByAfterwards) {
    openDrive();
    EXPECT_EQ(run(runImageToDrive), 1U);
    ASSERT_TRUE(destination_->partitionTable.get());
    EXPECT_EQ(destination_->partitionTable.get()->mbrSignature, 0x12345678U);
    EXPECT_TRUE(isStillTheProbedDisk(*destination_));
}

TEST_F(NewTable, OfAStoppedCopyIsReadToo) {
    openDrive();
    display_.onStatus = [&](std::string_view text) {
        if (text.starts_with(" Status: 00")) {
            terminate();
        }
    };
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_EQ(display_.lastStatus(), " Image To Drive Terminated -- Not Completed");
    EXPECT_THAT(requests(), SizeIs(1));
    EXPECT_TRUE(isMounted());
    EXPECT_TRUE(isStillTheProbedDisk(*destination_));
}

TEST_F(NewTable, OfACloneIsReadInBothDirections) {
    std::filesystem::create_directories("bench\\backing");
    writeFile(backingFile(1), diskContent());
    bench_.addDrive(R"({"number": 1, "bus": "nvme", "size": )" + std::to_string(kBlocks * kBlock) + "}");
    openDrive();
    DriveRecord& source = drive(1);
    order_.source = &source;
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_THAT(requests(), SizeIs(1));
    EXPECT_EQ(run(runReverseClone), 1U);
    EXPECT_THAT(requests(), SizeIs(2));
    EXPECT_EQ(content(2, 0, kBlocks * kBlock), diskContent());
    EXPECT_EQ(lastDriveStatus(*destination_), "COMPLETED") << "the second one has cleaned the first one's volume away";
}

TEST_F(NewTable, ThatTheSystemCannotReadLeavesARow) {
    openDrive(updateFails("ERROR_IO_DEVICE"));
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_THAT(events(), ElementsAre(::testing::AllOf(
                              ::testing::StartsWith("ERROR: Windows could not read the new partition table of disk "
                                                    "002 - Target T1, 524288 bytes: "),
                              ::testing::EndsWith("(error 1117). Plug the drive in anew"))));
    EXPECT_EQ(display_.lastStatus(), " Image To Drive SUCCESSFULLY Completed");
    EXPECT_EQ(lastDriveStatus(*destination_), "COMPLETED");
}

TEST_F(NewTable, OfADriveWhoseDriverDoesNotKnowTheRequestIsNobodysTrouble) {
    openDrive(updateFails("ERROR_INVALID_FUNCTION"));
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_THAT(requests(), SizeIs(1));
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_EQ(lastDriveStatus(*destination_), "COMPLETED");
}

TEST_F(NewTable, OfADriveThatHasGoneIsNotAskedFor) {
    openDrive(R"({"vanishAfterRequests": 3})");
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_THAT(requests(), IsEmpty());
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 3 failed writes");
}

TEST_F(NewTable, MountedInTheMiddleOfACopyIsToldWithWhatItCostsAndWhatHelps) {
    openDrive(R"({"rescanAfterWrites": 1})");
    user_.expectStop("***** MOUNTED DURING THE COPY *****",
                     "Windows has mounted T: on the DESTINATION during the copy, and refuses writes inside mounted "
                     "volumes. 1 write failed: the copy is not whole. Press 'Disable Drive Mounting', and copy again: "
                     "the DESTINATION is cleaned first");
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_EQ(display_.losses(), "red: 1 failed write, a volume was mounted meanwhile");
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 1 failed write");
    EXPECT_EQ(display_.lastStatus(), " Image To Drive SUCCESSFULLY Completed") << "the text of a run to its end";
    EXPECT_EQ(content(2, kVolumeAt, kBlock), std::string(kBlock, '\0'));
}

TEST_F(NewTable, IsNotMountedInTheMiddleWhereMountingIsDisabled) {
    bench_.describe(R"({"automount": false})");
    openDrive(R"({"rescanAfterWrites": 1})");
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_EQ(display_.losses(), "Nothing was lost");
    EXPECT_EQ(content(2, 0, kBlocks * kBlock), diskContent());
    EXPECT_FALSE(isMounted());
}

} // namespace
} // namespace torvane
