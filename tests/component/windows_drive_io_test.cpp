#include "discovery/windows_drive_io.h"

#include "discovery/physical_drive_probe.h"
#include "tests/component/test_bench.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace torvane {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr std::uint64_t kGibibyte = 0x40000000;

/// A drive of 8 GiB that holds zeros.
class WindowsDriveIoTest : public ::testing::Test {
  protected:
    const DriveRecord& openDrive(const std::string& faults = "{}") {
        bench_.addDrive(R"({"number": 1, "bus": "nvme", "size": "8 GiB", "faults": )" + faults + "}");
        bench_.open();
        drive_ = ProbePhysicalDrive(1);
        if (!drive_) {
            throw std::runtime_error("the bench has no such drive"); // ends the test
        }
        return *drive_;
    }

    testing::TestBench bench_;
    WindowsDriveIo io_;
    std::vector<std::byte> bytes_ = std::vector<std::byte>(4096, std::byte{0xEE});

  private:
    DriveRecordPtr drive_; // closed before the bench
};

TEST_F(WindowsDriveIoTest, WritesAndReadsWholeSpansBeyondFourGibibytes) {
    const DriveRecord& drive = openDrive();
    EXPECT_EQ(io_.write(drive, 5 * kGibibyte, bytes_), TransferOutcome::kWhole);
    std::vector<std::byte> read(8192);
    EXPECT_EQ(io_.read(drive, 5 * kGibibyte - 4096, read), TransferOutcome::kWhole);
    EXPECT_THAT(std::vector(read.begin(), read.begin() + 4096), Each(std::byte{0}));
    EXPECT_THAT(std::vector(read.begin() + 4096, read.end()), Each(std::byte{0xEE}));
}

TEST_F(WindowsDriveIoTest, ABadSectorFails) {
    const DriveRecord& drive = openDrive(R"({"reads": [{"firstSector": 3}], "writes": [{"firstSector": 3}]})");
    EXPECT_EQ(io_.read(drive, 0, bytes_), TransferOutcome::kFailed);
    EXPECT_NE(GetLastError(), DWORD{NO_ERROR});
    EXPECT_EQ(io_.write(drive, 0, bytes_), TransferOutcome::kFailed);
    EXPECT_EQ(io_.read(drive, 4096, bytes_), TransferOutcome::kWhole);
}

TEST_F(WindowsDriveIoTest, AShortReadFails) {
    const DriveRecord& drive = openDrive(R"({"shortReads": [{"firstSector": 0, "bytes": 512}]})");
    EXPECT_EQ(io_.read(drive, 0, bytes_), TransferOutcome::kFailed);
}

TEST_F(WindowsDriveIoTest, PastTheEndFails) {
    const DriveRecord& drive = openDrive();
    EXPECT_EQ(io_.read(drive, 8 * kGibibyte, bytes_), TransferOutcome::kFailed);
}

TEST_F(WindowsDriveIoTest, APlaceThatCannotBeReachedIsToldAndNothingIsMoved) {
    const DriveRecord& drive = openDrive(R"({"seeks": [{"firstSector": 8}]})");
    EXPECT_TRUE(io_.canReach(drive, 0));
    EXPECT_FALSE(io_.canReach(drive, 4096));
    EXPECT_EQ(reachAndRead(io_, drive, 4096, bytes_), TransferOutcome::kNotReached);
    EXPECT_EQ(reachAndWrite(io_, drive, 4096, bytes_), TransferOutcome::kNotReached);
    EXPECT_THAT(bench_.log("target=drive:1 request=read"), IsEmpty());
    EXPECT_THAT(bench_.log("target=drive:1 request=write"), IsEmpty());
    EXPECT_EQ(reachAndRead(io_, drive, 0, bytes_), TransferOutcome::kWhole);
    EXPECT_EQ(reachAndWrite(io_, drive, 0, bytes_), TransferOutcome::kWhole);
}

TEST_F(WindowsDriveIoTest, AnUnpluggedDriveIsGone) {
    const DriveRecord& drive = openDrive();
    bench_.unplug(1);
    EXPECT_EQ(io_.read(drive, 0, bytes_), TransferOutcome::kGone);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_DEVICE_NOT_CONNECTED));
    EXPECT_EQ(io_.write(drive, 0, bytes_), TransferOutcome::kGone);
}

TEST_F(WindowsDriveIoTest, ADriveThatVanishesBetweenTwoReadsIsGone) {
    const DriveRecord& drive = openDrive(R"({"vanishAfterRequests": 2})");
    EXPECT_EQ(io_.read(drive, 0, bytes_), TransferOutcome::kWhole);
    EXPECT_EQ(io_.read(drive, 0, bytes_), TransferOutcome::kWhole);
    EXPECT_EQ(io_.read(drive, 0, bytes_), TransferOutcome::kGone);
}

TEST_F(WindowsDriveIoTest, AFlushReachesTheDrive) {
    const DriveRecord& drive = openDrive();
    EXPECT_EQ(io_.flush(drive), TransferOutcome::kWhole);
    EXPECT_THAT(bench_.log("target=drive:1 request=flush result=ok"), SizeIs(1));
    bench_.unplug(1);
    EXPECT_EQ(io_.flush(drive), TransferOutcome::kGone);
}

TEST_F(WindowsDriveIoTest, AFlushMayFail) {
    const DriveRecord& drive = openDrive(R"({"flush": "ERROR_WRITE_FAULT"})");
    EXPECT_EQ(io_.flush(drive), TransferOutcome::kFailed);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_WRITE_FAULT));
}

TEST_F(WindowsDriveIoTest, ADriveThatKnowsNoFlushHoldsNothingBack) {
    const DriveRecord& drive = openDrive(R"({"flush": "ERROR_INVALID_FUNCTION"})");
    EXPECT_EQ(io_.flush(drive), TransferOutcome::kWhole);
    EXPECT_THAT(bench_.log("target=drive:1 request=flush result=ERROR_INVALID_FUNCTION"), SizeIs(1));
}

TEST_F(WindowsDriveIoTest, TriesNothingAgain) {
    const DriveRecord& drive = openDrive(R"({"reads": [{"firstSector": 0}]})");
    EXPECT_EQ(io_.read(drive, 0, bytes_), TransferOutcome::kFailed);
    EXPECT_THAT(bench_.log("target=drive:1 request=read"), ElementsAre(HasSubstr("length=4096")));
}

} // namespace
} // namespace torvane
