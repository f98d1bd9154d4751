#include "copy/evidence/acquisition_record.h"

#include "records/drive_record.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace torvane {
namespace {

using ::testing::HasSubstr;

AcquisitionRecord wholeRecord() {
    return {.program = {.name = "Torvane", .version = "1.2.0", .build = "0123abc", .machine = "DESK-4", .user = "kim"},
            .job = "Forensic image",
            .caseInformation = {.caseNumber = "2026/117", .examiner = "K. Ito", .note = "first\r\nsecond"},
            .source = {.driveNumber = 3,
                       .transport = "SATA",
                       .model = "HARROW 500",
                       .serialNumber = " S1 ",
                       .deviceSerialNumber = "S1",
                       .printedSerialNumber = "HG51-2290",
                       .firmware = "A1",
                       .sizeBytes = 4096 * 1000,
                       .sectorSize = 4096,
                       .readOnlyBefore = true,
                       .readOnlyAfter = false},
            .image = "E:\\HARROW 500.41.img",
            .map = "E:\\HARROW 500.41.img.map",
            .begin = {2026, 11, 22, 20, 15, 3, 60},
            .end = LocalMoment{2026, 11, 22, 21, 0, 0, 60},
            .ending = "completed",
            .losses = "1 unreadable block",
            .stoppedBy = "nobody",
            .md5 = Md5Digest{0x81, 0x40, 0xF9, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 0xFF},
            .sha256 = Sha256Digest{0xE3, 0xB0, 1},
            .missingBytes = 12288,
            .unreadable = {{.offset = 8192, .length = 8192, .status = RangeStatus::kNonTrimmed},
                           {.offset = 40960, .length = 4096, .status = RangeStatus::kNonTrimmed}},
            .writeFailures = 2,
            .verification = RecordedVerification{.begin = {2026, 11, 22, 21, 1, 0, 60},
                                                 .end = LocalMoment{2026, 11, 22, 21, 30, 0, 60},
                                                 .outcome = "verified"}};
}

TEST(AcquisitionRecord, TellsEverythingLineByLine) {
    EXPECT_EQ(acquisitionRecordText(wholeRecord()),
              "Program: Torvane\r\n"
              "Version: 1.2.0\r\n"
              "Build: 0123abc\r\n"
              "Machine: DESK-4\r\n"
              "User: kim\r\n"
              "Job: Forensic image\r\n"
              "Case number: 2026/117\r\n"
              "Examiner: K. Ito\r\n"
              "Note: first  second\r\n"
              "Drive number: 3\r\n"
              "Transport: SATA\r\n"
              "Model: HARROW 500\r\n"
              "Serial number: S1\r\n"
              "Serial number told by the device: S1\r\n"
              "Serial number printed on the device: HG51-2290\r\n"
              "Firmware: A1\r\n"
              "Size in bytes: 4096000\r\n"
              "Sectors: 1000\r\n"
              "Sector size in bytes: 4096\r\n"
              "Read-only before: yes\r\n"
              "Read-only after: no\r\n"
              "Image: E:\\HARROW 500.41.img\r\n"
              "Map: E:\\HARROW 500.41.img.map\r\n"
              "Start: 2026-11-22 20:15:03 +01:00\r\n"
              "End: 2026-11-22 21:00:00 +01:00\r\n"
              "Ending: completed\r\n"
              "Lost: 1 unreadable block\r\n"
              "Stopped by: nobody\r\n"
              "MD5: 8140f9000102030405060708090a0bff\r\n"
              "SHA-256: e3b0010000000000000000000000000000000000000000000000000000000000\r\n"
              "Bytes missing from the image: 12288\r\n"
              "Unreadable ranges: 2\r\n"
              "Unreadable range 1: sectors 2 to 3, offset 8192 bytes, length 8192 bytes\r\n"
              "Unreadable range 2: sectors 10 to 10, offset 40960 bytes, length 4096 bytes\r\n"
              "Write failures: 2\r\n"
              "Verification: verified\r\n"
              "Verification start: 2026-11-22 21:01:00 +01:00\r\n"
              "Verification end: 2026-11-22 21:30:00 +01:00\r\n");
}

TEST(AcquisitionRecord, SaysWhatWasNotToldNotGivenAndNotMade) {
    AcquisitionRecord record = wholeRecord();
    record.program.machine.clear();
    record.program.user.clear();
    record.caseInformation = {};
    record.source = {};
    record.source.model = "  ";
    record.source.sectorSize = 512;
    record.end = {};
    record.md5 = {};
    record.sha256 = {};
    record.unreadable.clear();
    record.verification->end = {};
    const std::string text = acquisitionRecordText(record);
    EXPECT_THAT(text, HasSubstr("Machine: not told\r\nUser: not told\r\n"));
    EXPECT_THAT(text, HasSubstr("Case number: none\r\nExaminer: none\r\nNote: none\r\n"));
    EXPECT_THAT(text, HasSubstr("Transport: not told\r\nModel: not told\r\nSerial number: not told\r\n"
                                "Serial number told by the device: not told\r\n"
                                "Serial number printed on the device: not told\r\nFirmware: not told\r\n"));
    EXPECT_THAT(text, HasSubstr("Read-only before: not told\r\nRead-only after: not told\r\n"));
    EXPECT_THAT(text, HasSubstr("\r\nEnd: not yet\r\n"));
    EXPECT_THAT(text, HasSubstr("MD5: not made\r\nSHA-256: not made\r\n"));
    EXPECT_THAT(text, HasSubstr("Unreadable ranges: 0\r\nWrite failures:"));
    EXPECT_THAT(text, HasSubstr("Verification end: not yet\r\n"));
    record.verification = {};
    EXPECT_TRUE(acquisitionRecordText(record).ends_with("Verification: not made\r\n"));
}

TEST(AcquisitionRecord, TakesTheSourceFromItsDriveRecord) {
    DriveRecord drive;
    drive.driveNumber = 4;
    drive.busType = 17;
    drive.model.assign("HARROW N512");
    drive.serialNumber.assign("0225_38A1");
    drive.firmware.assign("HG2A");
    drive.device.identifySerial = "D7";
    drive.printed.serialNumber = "HG51-2290";
    drive.sizeBytes = 512 * 7;
    const RecordedSource source = recordedSource(drive);
    EXPECT_EQ(source.driveNumber, 4);
    EXPECT_EQ(source.transport, "NVM Express");
    EXPECT_EQ(source.model, "HARROW N512");
    EXPECT_EQ(source.serialNumber, "0225_38A1");
    EXPECT_EQ(source.deviceSerialNumber, "D7");
    EXPECT_EQ(source.printedSerialNumber, "HG51-2290");
    EXPECT_EQ(source.firmware, "HG2A");
    EXPECT_EQ(source.sizeBytes, 3584U);
    EXPECT_EQ(source.sectorSize, 512U) << "the usual one: the drive has told none";
    EXPECT_FALSE(source.readOnlyBefore);
    drive.recordKind = kRecordKindImageFile;
    drive.sizeBytes = -1;
    EXPECT_EQ(recordedSource(drive).transport, "Image file");
    EXPECT_EQ(recordedSource(drive).sizeBytes, 0U);
}

} // namespace
} // namespace torvane
