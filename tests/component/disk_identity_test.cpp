#include "discovery/disk_identity.h"

#include "base/bytes.h"
#include "monitoring/nvme_health.h"
#include "tests/component/copy_bench.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>

namespace torvane {
namespace {

class DiskIdentity : public testing::CopyBench {
  protected:
    DriveRecord& openDisk(const std::string& more = "") {
        bench_.addDrive(R"({"number": 3, "bus": "nvme", "size": "16 MiB")" + more + "}");
        DriveRecord& disk = drive(3);
        rememberMedium(disk);
        return disk;
    }

    /// As the scan does.
    static void rememberMedium(DriveRecord& disk) {
        rememberPartitionTable(disk);
        rememberMediaChanges(disk);
    }

    /// An MBR with that signature on drive 3, past the program: `file` is its content's.
    static void putMbr(std::uint32_t signature, const char* file = "drive3.img") {
        std::array<std::uint8_t, 512> sector{};
        storeLe(std::span(sector), 440, signature);
        sector[510] = 0x55;
        sector[511] = 0xAA;
        const std::string path = std::string("bench\\backing\\") + file;
        std::filesystem::create_directories("bench\\backing");
        std::ofstream(path, std::ios::binary | std::ios::app).flush();
        std::fstream content(path, std::ios::binary | std::ios::in | std::ios::out);
        content.write(reinterpret_cast<const char*>(sector.data()), sector.size());
        ASSERT_TRUE(content.flush());
    }
};

constexpr const char* kReader = R"(, "removable": true, "identity": {"vendor": "Card", "product": "Reader"})";
/// A dock: it stays connected, whatever disk is in it.
constexpr const char* kDock = R"(, "identity": {"vendor": "V", "product": "Disk", "serial": "S1"},
                                   "swap": {"keepsHandles": true, "identity": )";

std::string faultOf(const std::string& request, const std::string& error, int after) {
    return R"(, "faults": {"requests": [{"request": ")" + request + R"(", "error": ")" + error + R"(", "after": )" +
           std::to_string(after) + "}]}";
}

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

constexpr const char* kNvme = R"(, "road": "nvme-query", "nvme": {"model": "Tarn N1", "serial": "TN-1"})";

TEST_F(DiskIdentity, AnNvmeDiskTellsAnEui64AndWhatIsPrintedOnIt) {
    DriveRecord& disk = openDisk(kNvme);
    ReadNvmeHealth(disk);
    EXPECT_EQ(disk.serialNumber.view().size(), 20U);
    EXPECT_EQ(disk.serialNumber.view().substr(0, 2), "02");
    EXPECT_EQ(disk.printed.serialNumber, "TN-1");
    EXPECT_TRUE(isStillTheProbedDisk(disk));
    EXPECT_TRUE(isStillTheProbedSource(disk));
}

TEST_F(DiskIdentity, AnNvmeDiskWithAnotherPrintedSerialNumberIsNot) {
    DriveRecord& disk = openDisk(kNvme);
    ReadNvmeHealth(disk);
    disk.printed.serialNumber = "TN-2";
    EXPECT_FALSE(isStillTheProbedDisk(disk));
    EXPECT_FALSE(isStillTheProbedSource(disk));
}

TEST_F(DiskIdentity, AnNvmeDiskThatTellsItsPrintedSerialNumberNoMoreMayBeReadAlone) {
    DriveRecord& disk = openDisk(kNvme + faultOf("StorageAdapterProtocolSpecificProperty", "ERROR_IO_DEVICE", 2));
    ReadNvmeHealth(disk);
    EXPECT_FALSE(isStillTheProbedDisk(disk));
    EXPECT_TRUE(isStillTheProbedSource(disk));
}

TEST_F(DiskIdentity, ADiskThatNeverToldAPrintedSerialNumberIsNotAskedForIt) {
    const DriveRecord& disk = openDisk();
    EXPECT_TRUE(isStillTheProbedDisk(disk));
    EXPECT_TRUE(bench_.log("property=StorageAdapterProtocolSpecificProperty").empty());
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

TEST_F(DiskIdentity, ADiskInItsPlaceIsNot) {
    const DriveRecord& disk = openDisk();
    bench_.swap(3);
    EXPECT_FALSE(isStillTheProbedDisk(disk));
    EXPECT_FALSE(isStillTheProbedSource(disk));
    bench_.swap(3);
    EXPECT_TRUE(isStillTheProbedDisk(disk));
}

TEST_F(DiskIdentity, ADiskOfOtherTextsIsNot) {
    for (const char* other : {R"({"vendor": "W", "product": "Disk", "serial": "S1"})",
                              R"({"vendor": "V", "product": "Disc", "serial": "S1"})",
                              R"({"vendor": "V", "product": "Disk", "serial": "S2"})", R"({})"}) {
        testing::TestBench bench;
        bench.addDrive(R"({"number": 3, "bus": "nvme", "size": "16 MiB")" + std::string(kDock) + other + "}}");
        bench.open();
        const DriveRecordPtr disk = ProbePhysicalDrive(3);
        ASSERT_TRUE(disk);
        EXPECT_TRUE(isStillTheProbedDisk(*disk));
        bench.swap(3);
        EXPECT_FALSE(isStillTheProbedDisk(*disk)) << other;
        EXPECT_FALSE(isStillTheProbedSource(*disk)) << other;
    }
}

TEST_F(DiskIdentity, AnotherCardOfEqualSizeIsNotItsMedium) {
    const DriveRecord& disk = openDisk(kReader);
    EXPECT_EQ(disk.device.mediaChanges, 0U);
    EXPECT_TRUE(isStillTheProbedDisk(disk));
    bench_.swap(3);
    EXPECT_FALSE(isStillTheProbedDisk(disk));
    EXPECT_FALSE(isStillTheProbedSource(disk));
    bench_.swap(3);
    EXPECT_FALSE(isStillTheProbedDisk(disk)) << "whatever happened to it meanwhile";
}

TEST_F(DiskIdentity, AHigherCountIsNoProofAgainstASourceWhoseTableNamesIt) {
    putMbr(0x11111111);
    putMbr(0x11111111, "drive3-swapped.img");
    const DriveRecord& disk = openDisk(kReader);
    bench_.swap(3);
    EXPECT_TRUE(isStillTheProbedSource(disk)) << "its resets are counted, too";
    EXPECT_FALSE(isStillTheProbedDisk(disk));
    putMbr(0x22222222, "drive3-swapped.img");
    EXPECT_FALSE(isStillTheProbedSource(disk));
}

TEST_F(DiskIdentity, AHigherCountDecidesOfASourceWhoseTableHasNoName) {
    putMbr(0);
    putMbr(0, "drive3-swapped.img");
    const DriveRecord& disk = openDisk(kReader);
    EXPECT_TRUE(isStillTheProbedSource(disk));
    bench_.swap(3);
    EXPECT_FALSE(isStillTheProbedSource(disk));
}

TEST_F(DiskIdentity, ANumberThatTheDriverNeverTellsIsNotAskedOfASource) {
    const DriveRecord& disk = openDisk(faultOf("IOCTL_STORAGE_GET_DEVICE_NUMBER", "ERROR_INVALID_FUNCTION", 0));
    EXPECT_TRUE(isStillTheProbedSource(disk));
    EXPECT_FALSE(isStillTheProbedDisk(disk));
}

TEST_F(DiskIdentity, ASourceThatFailsToTellItsNumberIsNot) {
    const DriveRecord& disk = openDisk(faultOf("IOCTL_STORAGE_GET_DEVICE_NUMBER", "ERROR_IO_DEVICE", 0));
    EXPECT_FALSE(isStillTheProbedSource(disk));
}

TEST_F(DiskIdentity, AnotherPartitionTableIsNotItsOwn) {
    putMbr(0x11111111);
    const DriveRecord& disk = openDisk(faultOf("IOCTL_STORAGE_CHECK_VERIFY", "ERROR_INVALID_FUNCTION", 0));
    EXPECT_EQ(disk.device.mediaChanges, std::nullopt);
    EXPECT_EQ(disk.partitionTable.get()->mbrSignature, 0x11111111U);
    EXPECT_TRUE(isStillTheProbedDisk(disk));
    putMbr(0x22222222);
    EXPECT_FALSE(isStillTheProbedDisk(disk));
    EXPECT_FALSE(isStillTheProbedSource(disk));
}

TEST_F(DiskIdentity, WhoeverChangedTheTableMakesItTheDisksOwn) {
    putMbr(0x11111111);
    DriveRecord& disk = openDisk();
    putMbr(0x22222222);
    EXPECT_FALSE(isStillTheProbedDisk(disk));
    rememberPartitionTable(disk);
    EXPECT_TRUE(isStillTheProbedDisk(disk));
    putMbr(0x11111111);
    EXPECT_FALSE(isStillTheProbedDisk(disk));
}

TEST_F(DiskIdentity, RememberingTheTableDoesNotTakeAnotherCardForTheFirst) {
    DriveRecord& disk = openDisk(kReader);
    bench_.swap(3);
    rememberPartitionTable(disk);
    EXPECT_FALSE(isStillTheProbedDisk(disk));
}

TEST_F(DiskIdentity, WhatIsNotToldAnyMoreIsAcceptedOfASourceAlone) {
    putMbr(0x11111111);
    for (const char* request : {"IOCTL_DISK_GET_DRIVE_LAYOUT_EX", "IOCTL_STORAGE_CHECK_VERIFY"}) {
        testing::TestBench bench;
        bench.addDrive(R"({"number": 3, "bus": "nvme", "size": "16 MiB")" + faultOf(request, "ERROR_CRC", 1) + "}");
        bench.open();
        const DriveRecordPtr disk = ProbePhysicalDrive(3);
        ASSERT_TRUE(disk);
        rememberMedium(*disk);
        EXPECT_FALSE(isStillTheProbedDisk(*disk)) << request;
        EXPECT_TRUE(isStillTheProbedSource(*disk)) << request;
    }
}

TEST_F(DiskIdentity, ASourceHasToTellItsTexts) {
    const DriveRecord& disk =
        openDisk(R"(, "identity": {"product": "P"})" + faultOf("StorageDeviceProperty", "ERROR_IO_DEVICE", 1));
    EXPECT_FALSE(isStillTheProbedSource(disk));
}

TEST_F(DiskIdentity, ACopyOntoADiskThatThenTellsNoTableLeavesTheOneThatItTold) {
    DriveRecord& disk = openDisk(faultOf("IOCTL_DISK_GET_DRIVE_LAYOUT_EX", "ERROR_CRC", 1));
    ASSERT_NE(disk.partitionTable.get(), std::nullopt);
    rememberToldPartitionTable(disk);
    EXPECT_NE(disk.partitionTable.get(), std::nullopt);
    EXPECT_FALSE(isStillTheProbedDisk(disk)) << "what it told once it has to tell";
}

TEST_F(DiskIdentity, ACopyOntoADiskGivesItTheTableThatItThenTells) {
    putMbr(0x11111111);
    DriveRecord& disk = openDisk();
    putMbr(0x22222222);
    EXPECT_FALSE(isStillTheProbedDisk(disk));
    rememberToldPartitionTable(disk);
    EXPECT_TRUE(isStillTheProbedDisk(disk));
}

TEST_F(DiskIdentity, WhatWasNeverToldIsNotCompared) {
    DriveRecord& disk = openDisk(
        R"(, "faults": {"requests": [{"request": "IOCTL_DISK_GET_DRIVE_LAYOUT_EX", "error": "ERROR_NOT_SUPPORTED"},
                                     {"request": "IOCTL_STORAGE_CHECK_VERIFY", "error": "ERROR_INVALID_FUNCTION"}]})");
    EXPECT_EQ(disk.partitionTable.get(), std::nullopt);
    EXPECT_TRUE(isStillTheProbedDisk(disk));
    disk.device.descriptor.reset();
    EXPECT_TRUE(isStillTheProbedDisk(disk));
}

TEST_F(DiskIdentity, ADriverThatHasJustFoundAnotherMediumIsAskedAgain) {
    const DriveRecord& disk = openDisk(
        R"(, "faults": {"requests": [{"request": "IOCTL_STORAGE_CHECK_VERIFY", "error": 1110, "after": 1, "times": 1}]})");
    EXPECT_TRUE(isStillTheProbedDisk(disk)) << "it tells the count the second time, and that has not changed";
}

} // namespace
} // namespace torvane
