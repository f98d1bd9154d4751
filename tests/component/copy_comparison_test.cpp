#include "tests/component/copy_bench.h"

// Copies onto a drive that are compared with their source afterwards.

namespace torvane {
namespace {

using ::testing::Contains;
using testing::noise;
using ::testing::SizeIs;

constexpr const char* kSucceeded = "****** VERIFY SUCCEEDED ******";
constexpr const char* kFailed = "****** VERIFY FAILED ******";

class Comparison : public testing::CopyBench {
  protected:
    static constexpr std::size_t kSize = 4 * kBlock + 4096;

    Comparison() { order_.verifyAfterwards = true; }

    void openDrives(const std::string& sourceFaults = "{}", const std::string& destinationFaults = "{}") {
        bench_.addDrive(R"({"number": 1, "bus": "nvme", "backing": {"pattern": "noise", "seed": 7}, "size": )" +
                        std::to_string(kSize) + R"(, "faults": )" + sourceFaults + "}");
        bench_.addDrive(R"({"number": 2, "bus": "nvme", "size": )" + std::to_string(kSize) + R"(, "faults": )" +
                        destinationFaults + "}");
        source_ = &drive(1);
        destination_ = &drive(2);
        order_.source = source_;
        order_.destination = destination_;
    }
    /// What was read of the drive, block by block.
    std::size_t reads(int number) {
        return bench_.log("target=drive:" + std::to_string(number) + " request=read").size();
    }

    DriveRecord* source_ = nullptr;
    DriveRecord* destination_ = nullptr;
};

TEST_F(Comparison, ReadsBothDrivesAgainAndFindsThemEqual) {
    openDrives();
    user_.expectInform(kSucceeded, "The DESTINATION holds what was copied: verified",
                       [] { EXPECT_FALSE(state().jobs.active()); });
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_THAT(bench_.log("target=drive:1 request=read"), SizeIs(10));
    EXPECT_THAT(bench_.log("target=drive:2 request=read"), SizeIs(5));
    EXPECT_THAT(display_.statuses(), Contains(" Beginning Verification"));
    EXPECT_EQ(display_.lastStatus(), " Image Completed");
    EXPECT_EQ(lastDriveStatus(*source_), "COMPLETED, verified");
    EXPECT_EQ(lastDriveStatus(*destination_), "COMPLETED, verified");
    EXPECT_EQ(state().raceTrack.succeeded, 1);
}

TEST_F(Comparison, OfAReverseCloneRunsTheOtherWay) {
    openDrives();
    user_.expectInform(kSucceeded, "The DESTINATION holds what was copied: verified");
    EXPECT_EQ(run(runReverseClone), 1U);
    const std::vector<std::string> read = bench_.log("target=drive:2 request=read");
    ASSERT_THAT(read, SizeIs(5));
    EXPECT_NE(read.front().find("offset=" + std::to_string(kSize - kBlock)), std::string::npos) << read.front();
    EXPECT_EQ(display_.lastStatus(), " Clone SUCCESSFULLY Completed");
}

TEST_F(Comparison, IsMadeWhenItIsWantedAlone) {
    openDrives();
    order_.verifyAfterwards = false;
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(reads(2), 0U);
    EXPECT_EQ(lastDriveStatus(*destination_), "COMPLETED");
}

TEST_F(Comparison, FindsAWriteThatWentWrongUnseen) {
    openDrives("{}", R"({"corruptWrites": [{"firstSector": 130}, {"firstSector": 400}]})");
    user_.expectInform(kFailed, "The DESTINATION has NOT been verified: 2 blocks differ, the first at sector 130. A "
                                "sector has 512 bytes");
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(display_.lastStatus(), " Copy NOT verified");
    EXPECT_EQ(state().raceTrack.failed, 1);
    EXPECT_EQ(state().raceTrack.succeeded, 0);
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD not verified");
}

TEST_F(Comparison, FindsAWriteThatFailed) {
    openDrives("{}", R"({"writes": [{"firstSector": 130}]})");
    user_.expectInform(kFailed, "The DESTINATION has NOT been verified: 1 block differs, the first at sector 128. A "
                                "sector has 512 bytes");
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD not verified, 1 failed write");
}

TEST_F(Comparison, LeavesOutWhatTheSourceCouldNotGive) {
    openDrives(R"({"reads": [{"firstSector": 300}]})");
    user_.expectInform(kSucceeded, "The DESTINATION holds what was copied: verified, 1 unreadable block left out");
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(reads(1), 9U) << "the bad place is not read a second time";
    EXPECT_EQ(lastDriveStatus(*source_), "BAD 1 unreadable block, verified");
}

TEST_F(Comparison, TellsWhatCouldNotBeReadAgain) {
    openDrives("{}", R"({"reads": [{"firstSector": 0}]})");
    user_.expectInform(kFailed, "The DESTINATION has NOT been verified: 1 block could not be read again");
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD not verified");
}

TEST_F(Comparison, CanBeTerminated) {
    openDrives();
    display_.onStatus = [](std::string_view status) {
        if (status == " Beginning Verification") {
            terminate();
        }
    };
    user_.expectInform(kFailed, "The DESTINATION has NOT been verified: verification stopped: 1 block was compared");
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD not verified");
    EXPECT_FALSE(state().jobs.active());
}

TEST_F(Comparison, IsNotMadeOfATerminatedClone) {
    openDrives();
    display_.onStatus = [](std::string_view status) {
        if (status.starts_with(" Status: 00")) {
            terminate();
        }
    };
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(reads(2), 0U);
    EXPECT_EQ(display_.lastStatus(), " User Terminated Image");
}

TEST_F(Comparison, ComesBeforeWindowsMayChangeTheDestination) {
    openDrives();
    user_.expectInform(kSucceeded, "The DESTINATION holds what was copied: verified");
    run(runForwardClone);
    const std::vector<std::string> all = bench_.log("target=drive:2");
    const auto lastOf = [&](const std::string& text) {
        return std::find_if(all.rbegin(), all.rend(),
                            [&](const std::string& line) { return line.find(text) != std::string::npos; });
    };
    ASSERT_NE(lastOf("IOCTL_DISK_UPDATE_PROPERTIES"), all.rend());
    EXPECT_LT(lastOf("IOCTL_DISK_UPDATE_PROPERTIES"), lastOf("request=read"))
        << "the later one comes first from behind";
}

TEST_F(Comparison, OfAnImageReadsItOnceMore) {
    constexpr std::size_t kOdd = 3 * kBlock + 100;
    testing::writeFile("disk.img", noise(3, 0, kOdd));
    openDrives();
    order_.source = nullptr;
    order_.path = (std::filesystem::current_path() / "disk.img").string();
    user_.expectAsk(
        "***** LAST SECTOR NOT FILLED *****",
        "The image is 100 bytes longer than whole sectors of the DESTINATION, which have 512 bytes. The last "
        "sector will be filled up with zeros. Do you want to continue?",
        true);
    user_.expectInform(kSucceeded, "The DESTINATION holds what was copied: verified");
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_EQ(reads(2), 4U);
    EXPECT_EQ(display_.lastStatus(), " Image To Drive SUCCESSFULLY Completed");
    EXPECT_EQ(lastDriveStatus(*destination_), "COMPLETED, verified");
}

} // namespace
} // namespace torvane
