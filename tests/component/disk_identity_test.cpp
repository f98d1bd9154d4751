#include "discovery/disk_identity.h"

#include "tests/component/copy_bench.h"

namespace torvane {
namespace {

class DiskIdentity : public testing::CopyBench {
  protected:
    DriveRecord& openDisk(const std::string& more = "") {
        bench_.addDrive(R"({"number": 3, "bus": "nvme", "size": "16 MiB")" + more + "}");
        return drive(3);
    }
};

TEST_F(DiskIdentity, AProbedDiskIsWhatItWas) {
    EXPECT_TRUE(isStillTheProbedDisk(openDisk()));
}

TEST_F(DiskIdentity, AnUnpluggedDiskIsNot) {
    const DriveRecord& disk = openDisk();
    bench_.unplug(3);
    EXPECT_FALSE(isStillTheProbedDisk(disk));
}

TEST_F(DiskIdentity, ADiskOfAnotherNumberIsNot) {
    DriveRecord& disk = openDisk();
    disk.driveNumber = 2;
    EXPECT_FALSE(isStillTheProbedDisk(disk));
}

TEST_F(DiskIdentity, AMediumOfAnotherSizeIsNot) {
    DriveRecord& disk = openDisk();
    disk.sizeBytes += 512;
    EXPECT_FALSE(isStillTheProbedDisk(disk));
}

TEST_F(DiskIdentity, ADiskThatDoesNotTellItsNumberIsNot) {
    EXPECT_FALSE(isStillTheProbedDisk(openDisk(
        R"(, "faults": {"requests": [{"request": "IOCTL_STORAGE_GET_DEVICE_NUMBER", "error": "ERROR_IO_DEVICE"}]})")));
}

TEST_F(DiskIdentity, AnImageFileAlwaysIs) {
    DriveRecord& disk = openDisk();
    disk.recordKind = kRecordKindImageFile;
    disk.driveNumber = 0;
    EXPECT_TRUE(isStillTheProbedDisk(disk));
}

} // namespace
} // namespace torvane
