#include "details/drive_pages.h"
#include "details/drive_volume.h"
#include "details/identity_page.h"
#include "details/meanings.h"
#include "details/nvme_log.h"
#include "records/drive_record.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

/// A drive as the scan leaves it.
DriveRecord scannedDrive() {
    DriveRecord drive;
    drive.model.assign("Tidewell TW1G Laptop Disk");
    drive.serialNumber.assign("TWC4118A");
    drive.vendor.assign("Not Available");
    drive.product.assign("Tidewell TW1G Laptop Disk");
    drive.firmware.assign("TW.0104");
    drive.busText.assign("Serial ATA");
    drive.devicePath.assign(R"(\\.\PhysicalDrive3)");
    drive.driveNumber = 3;
    drive.busType = 11;
    drive.bytesPerSector = 512;
    drive.sizeBytes = 1'073'741'824;
    drive.smartType = kSmartTypeStandard;
    return drive;
}

std::vector<DetailPage> pagesOf(const DriveRecord& drive) {
    return drivePages({.drive = drive, .volumes = {}, .readOnly = {}});
}

const DetailPage& pageOf(const std::vector<DetailPage>& pages, std::string_view title) {
    return *std::ranges::find(pages, title, &DetailPage::title);
}

/// The cells of the page's first row that begins with that name; none when there is no such row.
std::vector<std::string> rowOf(const DetailPage& page, const std::string& name) {
    for (const DetailRow& row : page.rows) {
        if (!row.heading && row.cells.front() == name) {
            return row.cells;
        }
    }
    return {};
}

std::vector<std::string> rowOf(const DriveRecord& drive, const std::string& title, const std::string& name) {
    return rowOf(pageOf(pagesOf(drive), title), name);
}

std::vector<std::string> headingsOf(const DetailPage& page) {
    std::vector<std::string> headings;
    for (const DetailRow& row : page.rows) {
        if (row.heading) {
            headings.push_back(row.cells.front());
        }
    }
    return headings;
}

// --- The pages

TEST(DrivePages, EveryDriveHasEveryPage) {
    std::vector<std::string> titles;
    for (const DetailPage& page : pagesOf(DriveRecord())) {
        titles.push_back(page.title);
    }
    EXPECT_THAT(titles,
                ElementsAre("Drive", "Health", "Attributes", "Self-tests", "Error log", "Statistics", "Report"));
}

TEST(DrivePages, AnEmptyPageSaysWhy) {
    const auto pages = pagesOf(DriveRecord());
    EXPECT_EQ(pageOf(pages, "Attributes").rows.front().cells.front(), "The drive's report has no attributes.");
    EXPECT_EQ(pageOf(pages, "Self-tests").rows.front().cells.front(), "The drive's report has no log of self-tests.");
    EXPECT_EQ(pageOf(pages, "Error log").rows.front().cells.front(), "The drive's report has no error log.");
    EXPECT_EQ(pageOf(pages, "Statistics").rows.front().cells.front(), "The drive's report has no statistics.");
    EXPECT_EQ(pageOf(pages, "Report").text, "smartctl.exe left no report of this drive at the last scan.\r\n");
}

// --- Drive

TEST(DetailIdentity, TellsWhoTheDriveIs) {
    const DriveRecord drive = scannedDrive();
    EXPECT_THAT(rowOf(drive, "Drive", "Place"), ElementsAre("Place", R"(drive 3, \\.\PhysicalDrive3)", ""));
    EXPECT_THAT(rowOf(drive, "Drive", "Model"), ElementsAre("Model", "Tidewell TW1G Laptop Disk", ""));
    EXPECT_EQ(rowOf(drive, "Drive", "Serial number")[1], "TWC4118A");
    EXPECT_EQ(rowOf(drive, "Drive", "Firmware")[1], "TW.0104");
    EXPECT_EQ(rowOf(drive, "Drive", "Bus")[1], "Serial ATA");
    EXPECT_EQ(rowOf(drive, "Drive", "Capacity")[1], "1,073,741,824 bytes");
    EXPECT_EQ(rowOf(drive, "Drive", "Capacity")[2], "1.07 GB as makers count, 1.00 GB as the list counts");
    EXPECT_EQ(rowOf(drive, "Drive", "Sectors")[1], "2,097,152");
    EXPECT_EQ(rowOf(drive, "Drive", "Sector size")[1], "512 bytes");
    // What the device did not tell, or tells already, has no row.
    for (const char* const name : {"Vendor", "Product", "Shown as", "Serial number, printed", "Model in the report"}) {
        EXPECT_THAT(rowOf(drive, "Drive", name), IsEmpty()) << name;
    }
}

TEST(DetailIdentity, TellsBothSerialNumbers) {
    DriveRecord drive = scannedDrive();
    drive.device.identifySerial = "TWC4118A";
    drive.printed = {.serialNumber = "HG51-2290", .model = "HARROW N512", .firmware = "HG2A"};
    drive.smartText = "=== START OF INFORMATION SECTION ===\nSerial Number: OTHER\nDevice Model: Bridge\n";
    EXPECT_THAT(rowOf(drive, "Drive", "Serial number, told by the device"),
                ElementsAre("Serial number, told by the device", "TWC4118A", "the same"));
    EXPECT_EQ(rowOf(drive, "Drive", "Serial number, printed")[1], "HG51-2290");
    EXPECT_EQ(rowOf(drive, "Drive", "Serial number in the report")[1], "OTHER");
    EXPECT_EQ(rowOf(drive, "Drive", "Model, told by its controller")[1], "HARROW N512");
    EXPECT_EQ(rowOf(drive, "Drive", "Model in the report")[1], "Bridge");
    EXPECT_EQ(rowOf(drive, "Drive", "Firmware, told by its controller")[1], "HG2A");
    drive.device.identifySerial = "ANOTHER";
    EXPECT_EQ(rowOf(drive, "Drive", "Serial number, told by the device")[2], "another one than the list shows");
}

TEST(DetailIdentity, SaysWhatADriveDoesNotTell) {
    const DriveRecord nothing;
    EXPECT_EQ(rowOf(nothing, "Drive", "Model")[1], "Not Available");
    EXPECT_EQ(rowOf(nothing, "Drive", "Serial number")[1], "Not Available");
    EXPECT_EQ(rowOf(nothing, "Drive", "Sectors")[1], "not told");
    EXPECT_EQ(rowOf(nothing, "Drive", "Sector size")[1], "not told");
    EXPECT_EQ(rowOf(nothing, "Drive", "Partition style")[1], "not told");
    EXPECT_EQ(rowOf(nothing, "Drive", "Read-only attribute")[1], "not told");
}

TEST(DetailIdentity, AnImageFileIsInItsPlace) {
    DriveRecord image = scannedDrive();
    image.recordKind = kRecordKindImageFile;
    image.imageFilePath.assign(R"(D:\images\one.img)");
    EXPECT_EQ(rowOf(image, "Drive", "Place")[1], R"(D:\images\one.img)");
}

TEST(DetailIdentity, SaysWhichDriveWindowsRunsFrom) {
    DriveRecord drive = scannedDrive();
    drive.systemDrive = 1;
    EXPECT_EQ(rowOf(drive, "Drive", "Place")[2], "Windows runs from this drive");
}

TEST(DetailIdentity, TellsAnotherCapacityOfTheReport) {
    DriveRecord drive = scannedDrive();
    drive.smartText = "=== START OF INFORMATION SECTION ===\nUser Capacity:    1,073,741,824 bytes [1.07 GB]\n";
    EXPECT_THAT(rowOf(drive, "Drive", "Capacity in the report"), IsEmpty());
    drive.sizeBytes -= 512;
    EXPECT_EQ(rowOf(drive, "Drive", "Capacity in the report")[1], "1,073,741,824 bytes [1.07 GB]");
}

TEST(DetailIdentity, TellsTheReadOnlyAttribute) {
    const DriveRecord drive = scannedDrive();
    const auto valueOf = [&drive](bool readOnly) {
        return rowOf(drivePages({.drive = drive, .volumes = {}, .readOnly = readOnly}).front(), "Read-only attribute");
    };
    EXPECT_THAT(valueOf(true), ElementsAre("Read-only attribute", "set", "Windows refuses every write to this drive"));
    EXPECT_EQ(valueOf(false)[1], "not set");
}

TEST(DetailIdentity, SaysWhyALockedDriveCannotBeCopied) {
    DriveRecord drive = scannedDrive();
    const auto securityRow = [&drive](const std::string& state) {
        drive.smartText = "=== START OF INFORMATION SECTION ===\nATA Version is: ACS-3\n" + state;
        return rowOf(drive, "Drive", "ATA security");
    };
    EXPECT_THAT(securityRow("ATA Security is:  ENABLED, PW level HIGH, **LOCKED** [SEC4]\n"),
                ElementsAre("ATA security", "ENABLED, PW level HIGH, **LOCKED**", HasSubstr("every copy")));
    EXPECT_THAT(securityRow("ATA Security is:  ENABLED, PW level HIGH, not locked, not frozen [SEC5]\n")[2],
                HasSubstr("locked when power was off"));
    EXPECT_THAT(securityRow("ATA Security is:  Disabled, frozen [SEC2]\n")[2],
                StartsWith("no password is set, and none"));
    EXPECT_THAT(securityRow("ATA Security is:  Disabled, NOT FROZEN [SEC1]\n")[2],
                StartsWith("no password is set: nothing"));
    EXPECT_EQ(securityRow("ATA Security is:  Unavailable\n")[2], "the drive knows no password");
    EXPECT_THAT(securityRow(""), ElementsAre("ATA security", "not reported", ""));
    EXPECT_EQ(securityMeaning("something else"), "");
}

TEST(DetailIdentity, TellsThePartitionTable) {
    DriveRecord drive = scannedDrive();
    drive.partitionTable.set(
        PartitionTable{.style = PartitionStyle::kMbr, .mbrSignature = 0x1234ABCD, .partitions = 2});
    EXPECT_THAT(rowOf(drive, "Drive", "Partition style"),
                ElementsAre("Partition style", "MBR", "disk signature 1234ABCD"));
    EXPECT_EQ(rowOf(drive, "Drive", "Partitions")[1], "2");
    drive.partitionTable.set(PartitionTable{
        .style = PartitionStyle::kGpt,
        .gptDiskId = {0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66, 0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}});
    EXPECT_EQ(rowOf(drive, "Drive", "Partition style")[2], "disk {00112233-4455-6677-8899-AABBCCDDEEFF}");
    drive.partitionTable.set(PartitionTable{});
    EXPECT_EQ(rowOf(drive, "Drive", "Partition style")[1], "none");
    EXPECT_THAT(rowOf(drive, "Drive", "Partitions"), IsEmpty());
}

TEST(DetailIdentity, TellsEachVolume) {
    DriveRecord drive = scannedDrive();
    drive.bitLockerEntryCount = 2;
    drive.bitLockerEntries[0].driveLetter = 'L';
    drive.bitLockerEntries[0].hasKey = 1;
    drive.bitLockerEntries[1].driveLetter = 'M';
    const std::vector<DriveVolume> volumes{
        {.letter = 'K',
         .label = "DATA",
         .fileSystem = "NTFS",
         .bytes = std::uint64_t{3} << 30U,
         .freeBytes = std::uint64_t{1} << 30U},
        {.letter = 'L', .label = {}, .fileSystem = {}, .bytes = {}, .freeBytes = {}},
        {.letter = 'M', .label = {}, .fileSystem = "FAT32", .bytes = {}, .freeBytes = {}},
    };
    const DetailPage page = drivePages({.drive = drive, .volumes = volumes, .readOnly = {}}).front();
    EXPECT_EQ(rowOf(page, "Volume K:")[1], "DATA, NTFS, 3.00 GB, 1.00 GB free");
    EXPECT_EQ(rowOf(page, "Volume K:")[2], "not checked for BitLocker; Detect Bitlocker checks it");
    EXPECT_EQ(rowOf(page, "Volume L:")[1], "tells no file system");
    EXPECT_EQ(rowOf(page, "Volume L:")[2], "encrypted by BitLocker, recovery password read");
    EXPECT_EQ(rowOf(page, "Volume M:")[1], "FAT32");
    EXPECT_EQ(rowOf(page, "Volume M:")[2], "encrypted by BitLocker, recovery password not read");
    EXPECT_EQ(rowOf(drive, "Drive", "Volumes")[1], "none with a drive letter");
    drive.bitLockerNotes[2] = {'K', true};
    EXPECT_EQ(bitLockerText(drive, 'K'), "not encrypted by BitLocker");
    drive.bitLockerNotes[2] = {'K', false};
    EXPECT_EQ(bitLockerText(drive, 'K'), "Windows does not tell whether BitLocker encrypts it");
}

// --- Health

TEST(DetailHealth, TellsTheVerdict) {
    DriveRecord drive = scannedDrive();
    drive.smartText = "SMART overall-health self-assessment test result: FAILED!\n"
                      "Read SMART Thresholds failed: scsi error\n";
    EXPECT_THAT(rowOf(drive, "Health", "The drive's own verdict"),
                ElementsAre("The drive's own verdict", "FAILED!", HasSubstr("failing")));
    EXPECT_EQ(rowOf(drive, "Health", "Not read")[1], "Read SMART Thresholds failed: scsi error");
    drive.smartText = "SMART overall-health self-assessment test result: UNKNOWN!\n";
    EXPECT_EQ(rowOf(drive, "Health", "The drive's own verdict")[2], "no verdict that the tool understands");
    drive.smartText = "SMART Health Status: FAILURE PREDICTION THRESHOLD EXCEEDED [asc=5d, ascq=0]\n";
    EXPECT_THAT(rowOf(drive, "Health", "The drive's own verdict")[2], HasSubstr("failing"));
    drive.smartText = "SMART Health Status: OK\n";
    EXPECT_THAT(rowOf(drive, "Health", "The drive's own verdict")[2], StartsWith("no limit of its own"));
}

TEST(DetailHealth, SaysWhyThereIsNoVerdict) {
    DriveRecord drive = scannedDrive();
    EXPECT_EQ(rowOf(drive, "Health", "The drive's own verdict")[2],
              "smartctl.exe left no report of this drive at the last scan");
    drive.smartText = "smartctl 7.3\n";
    EXPECT_EQ(rowOf(drive, "Health", "The drive's own verdict")[2], "the report tells no verdict");
    drive.smartType = kSmartTypeNone;
    EXPECT_EQ(rowOf(drive, "Health", "The drive's own verdict")[2],
              "the drive did not let its monitoring data be read");
}

TEST(DetailHealth, TellsTheGradedCountersInNumbers) {
    DriveRecord drive = scannedDrive();
    drive.disk[Counter::kPowerOnHours] = 31877;
    drive.disk[Counter::kReallocatedSectors] = 4012;
    drive.ssd[Counter::kPendingSectors] = 7;
    EXPECT_EQ(rowOf(drive, "Health", "Power-on hours")[1], "31,877 (3.6 years)");
    EXPECT_EQ(rowOf(drive, "Health", "Reallocated sectors")[1], "4,012");
    EXPECT_THAT(rowOf(drive, "Health", "Pending sectors"), IsEmpty());
    drive.smartType = kSmartTypeSsd;
    EXPECT_EQ(rowOf(drive, "Health", "Pending sectors")[1], "7");
}

TEST(DetailHealth, TellsTheReportsNvmeLogWithItsMeaning) {
    DriveRecord drive = scannedDrive();
    drive.smartText =
        "SMART/Health Information (NVMe Log 0x02)\nAvailable Spare: 97%\nTemperature Sensor 2: 40 Celsius\n"
        "Future Counter: 5\n";
    EXPECT_THAT(rowOf(drive, "Health", "Available Spare"), ElementsAre("Available Spare", "97%", HasSubstr("spare")));
    EXPECT_EQ(rowOf(drive, "Health", "Temperature Sensor 2")[2], "of one of its sensors");
    EXPECT_THAT(rowOf(drive, "Health", "Future Counter"), ElementsAre("Future Counter", "5", ""));
    EXPECT_EQ(pageOf(pagesOf(drive), "Attributes").rows.front().cells.front(),
              "An NVMe drive has no attributes: the page Health has its log.");
}

TEST(DetailHealth, TellsTheNvmeLogThatTheScanRead) {
    DriveRecord drive = scannedDrive();
    drive.smartType = kSmartTypeNvme;
    drive.nvmeLog.assign(512, 0);
    drive.nvmeLog[5] = 7;
    drive.nvmeLog[112] = 3;
    EXPECT_EQ(rowOf(drive, "Health", "The drive's own verdict")[1], "no warning");
    drive.nvmeLog[0] = 4;
    EXPECT_EQ(rowOf(drive, "Health", "The drive's own verdict")[1], "WARNING");
    EXPECT_EQ(rowOf(drive, "Health", "Percentage Used")[1], "7%");
    EXPECT_THAT(rowOf(drive, "Health", "Power Cycles"), ElementsAre("Power Cycles", "3", HasSubstr("switched on")));
    EXPECT_EQ(pageOf(pagesOf(drive), "Attributes").rows.front().cells.front(),
              "An NVMe drive has no attributes: the page Health has its log.");
}

TEST(DetailHealth, TellsTemperaturesOnce) {
    DriveRecord drive = scannedDrive();
    const std::string statistics = "Device Statistics (GP Log 0x04)\n"
                                   "0x05  =====  =  =  ===  == Temperature Statistics (rev 1) ==\n"
                                   "0x05  0x008  1  35  ---  Current Temperature\n"
                                   "0x05  0x010  1  34  ---  Average Short Term Temperature\n"
                                   "0x05  0x020  1  -  ---  Highest Temperature\n";
    drive.smartText =
        "ID# ATTRIBUTE_NAME\n194 Temperature_Celsius -O---- 187 187 000 - 32 (Min/Max 21/38)\n" + statistics;
    EXPECT_EQ(rowOf(drive, "Health", "Attribute 194 Temperature_Celsius")[1], "32 (Min/Max 21/38)");
    EXPECT_EQ(rowOf(drive, "Health", "Current Temperature")[1], "35");
    EXPECT_THAT(rowOf(drive, "Health", "Average Short Term Temperature"), IsEmpty());
    EXPECT_THAT(rowOf(drive, "Health", "Highest Temperature"), IsEmpty());
    drive.smartText = "SCT Status Version: 3\nCurrent Temperature: 33 Celsius\n" + statistics;
    EXPECT_EQ(rowOf(drive, "Health", "Current Temperature")[1], "33 Celsius");
}

TEST(DetailHealth, TellsWearByTheStandardsCounter) {
    DriveRecord drive = scannedDrive();
    const std::string group = "Device Statistics (GP Log 0x04)\n";
    drive.smartText = group + "0x07  0x008  1  5  N--  Percentage Used Endurance Indicator\n";
    EXPECT_EQ(rowOf(drive, "Health", "Percentage Used Endurance Indicator")[1], "5%");
    drive.smartText = group + "0x07  0x008  1  -  N--  Percentage Used Endurance Indicator\n";
    EXPECT_THAT(rowOf(drive, "Health", "Percentage Used Endurance Indicator"), IsEmpty());
}

TEST(DetailHealth, TellsWhatAScsiDriveCounts) {
    DriveRecord drive = scannedDrive();
    drive.smartText = "=== START OF READ SMART DATA SECTION ===\nElements in grown defect list: 3\n";
    EXPECT_THAT(rowOf(drive, "Health", "Elements in grown defect list"),
                ElementsAre("Elements in grown defect list", "3", HasSubstr("bad sectors")));
    EXPECT_EQ(pageOf(pagesOf(drive), "Attributes").rows.front().cells.front(),
              "A SCSI drive has no attributes: the page Health has what it counts.");
}

// --- Tables

TEST(DetailAttributes, HasEachWithItsStateAndMeaning) {
    DriveRecord drive = scannedDrive();
    drive.smartText = "ID# ATTRIBUTE_NAME\n"
                      "  5 Reallocated_Sector_Ct PO--CK 088 087 005 - 214\n"
                      "  9 Power_On_Hours -O--C- 069 069 000 - 31877\n"
                      "190 Airflow_Temperature_Cel -O---K 059 041 045 Past 41\n"
                      "197 Current_Pending_Sector -O---K 100 100 000 - 0\n"
                      "231 SSD_Life_Left PO--C- 001 001 010 NOW 1\n"
                      "248 Unknown_Attribute PO--C- 001 001 010 - 1\n";
    EXPECT_THAT(rowOf(drive, "Attributes", "5"),
                ElementsAre("5", "Reallocated_Sector_Ct", "214", "088", "087", "005", "NOT ZERO",
                            "bad sectors that were replaced by spare ones"));
    EXPECT_EQ(rowOf(drive, "Attributes", "9")[6], "ok");
    EXPECT_EQ(rowOf(drive, "Attributes", "190")[6], "failed before");
    EXPECT_EQ(rowOf(drive, "Attributes", "197")[6], "ok");
    EXPECT_EQ(rowOf(drive, "Attributes", "231")[6], "FAILING NOW");
    EXPECT_EQ(rowOf(drive, "Attributes", "248")[7], "of the maker's own; not made known");
}

TEST(DetailLogs, HaveTheirNotesAboveTheirRows) {
    DriveRecord drive = scannedDrive();
    drive.smartText = "SMART Extended Comprehensive Error Log Version: 1 (1 sectors)\nDevice Error Count: 3\n"
                      "Error 3 [2] occurred at disk power-on lifetime: 300 hours\n  Error: UNC at LBA = 0x10 = 16\n"
                      "SMART Extended Self-test Log Version: 1 (1 sectors)\n"
                      "# 1  Short offline       Completed without error       00%        72         -\n";
    const auto pages = pagesOf(drive);
    EXPECT_THAT(headingsOf(pageOf(pages, "Error log")), ElementsAre("Device Error Count: 3"));
    EXPECT_THAT(rowOf(pageOf(pages, "Error log"), "UNC"), ElementsAre("UNC", "16", "", "300", "3"));
    EXPECT_THAT(rowOf(pageOf(pages, "Self-tests"), "Short offline"),
                ElementsAre("Short offline", "Completed without error", "00%", "72", "-", "1"));
}

TEST(DetailStatistics, SayHowMuchWasMovedAndWhichLimitWasReached) {
    DriveRecord drive = scannedDrive();
    drive.smartText = "Device Statistics (GP Log 0x04)\n"
                      "0x01  =====  =  =  ===  == General Statistics (rev 1) ==\n"
                      "0x01  0x018  6  2000000000  ---  Logical Sectors Written\n"
                      "0x01  0x020  6  -  ---  Logical Sectors Read\n"
                      "0x05  =====  =  =  ===  == Temperature Statistics (rev 1) ==\n"
                      "0x05  0x020  1  71  NDC+ Highest Temperature\n"
                      "0x05  0x028  1  -40  ---  Lowest Temperature\n";
    const auto pages = pagesOf(drive);
    const DetailPage& page = pageOf(pages, "Statistics");
    EXPECT_THAT(headingsOf(page), ElementsAre("General Statistics", "Temperature Statistics"));
    EXPECT_THAT(rowOf(page, "Logical Sectors Written"),
                ElementsAre("Logical Sectors Written", "2,000,000,000", "by the computer: 1.02 TB"));
    EXPECT_EQ(rowOf(page, "Logical Sectors Read")[1], "not told");
    EXPECT_THAT(rowOf(page, "Highest Temperature")[2], StartsWith("LIMIT REACHED"));
    EXPECT_EQ(rowOf(page, "Lowest Temperature")[1], "-40");
}

TEST(DetailReport, IsTheToolsTextWithItsLineEnds) {
    DriveRecord drive = scannedDrive();
    drive.smartText = "one\r\ntwo\nthree";
    EXPECT_EQ(pagesOf(drive).back().text, "one\r\ntwo\r\nthree");
}

TEST(DetailReport, IsCutWhereItIsTooLong) {
    DriveRecord drive = scannedDrive();
    drive.smartText.assign((std::size_t{1} << 20U) + 1, 'x');
    EXPECT_THAT(pagesOf(drive).back().text, ::testing::EndsWith("[The report goes on: its file has all of it.]\r\n"));
}

// --- Meanings

TEST(Meanings, TheMoreExactNameCounts) {
    EXPECT_FALSE(attributeMeaning("Bogus_Current_Pend_Sect").countsFaults);
    EXPECT_TRUE(attributeMeaning("Current_Pending_Sector").countsFaults);
    EXPECT_EQ(attributeMeaning("Unused_Rsvd_Blk_Cnt_Tot").words, "spare flash blocks that are left");
    EXPECT_EQ(attributeMeaning("Used_Rsvd_Blk_Cnt_Tot").words, "spare flash blocks that are used up");
    EXPECT_EQ(attributeMeaning("Unknown_Attribute").words, "");
    EXPECT_EQ(statisticMeaning("nothing"), "");
}

// --- The NVMe log's own bytes

TEST(NvmeLog, HasEveryLine) {
    std::vector<std::uint8_t> log(512);
    const std::span<std::uint8_t> bytes(log);
    log[0] = 0x04;
    storeLe<std::uint16_t>(bytes, 1, 314);
    log[3] = 100;
    log[4] = 10;
    log[5] = 7;
    storeLe<std::uint64_t>(bytes, 32, 2'000'000);
    storeLe<std::uint64_t>(bytes, 112, 911);
    storeLe<std::uint64_t>(bytes, 128, 5127);
    log[160 + 8] = 1;
    storeLe<std::uint32_t>(bytes, 192, 3);
    storeLe<std::uint16_t>(bytes, 202, 300);
    const std::vector<ReportField> fields = nvmeLogFields(log);
    EXPECT_EQ(fieldOf(fields, "Critical Warning"), "0x04");
    EXPECT_EQ(fieldOf(fields, "Temperature"), "41 Celsius");
    EXPECT_EQ(fieldOf(fields, "Available Spare"), "100%");
    EXPECT_EQ(fieldOf(fields, "Available Spare Threshold"), "10%");
    EXPECT_EQ(fieldOf(fields, "Percentage Used"), "7%");
    EXPECT_EQ(fieldOf(fields, "Data Units Read"), "2,000,000 [1.02 TB]");
    EXPECT_EQ(fieldOf(fields, "Power Cycles"), "911");
    EXPECT_EQ(fieldOf(fields, "Power On Hours"), "5,127");
    EXPECT_THAT(fieldOf(fields, "Media and Data Integrity Errors"), StartsWith("more than"));
    EXPECT_EQ(fieldOf(fields, "Warning Comp. Temperature Time"), "3");
    EXPECT_EQ(fieldOf(fields, "Temperature Sensor 1"), "");
    EXPECT_EQ(fieldOf(fields, "Temperature Sensor 2"), "27 Celsius");
    for (const ReportField& field : fields) {
        EXPECT_NE(nvmeMeaning(field.name), "") << field.name;
    }
    log.pop_back();
    EXPECT_THAT(nvmeLogFields(log), IsEmpty());
}

// --- As text

TEST(DetailText, LinesUpItsColumns) {
    const DetailPage page{.title = "Drive",
                          .columns = {{"Name", 10}, {"Value", 10}},
                          .rows = {{.cells = {"Identity"}, .heading = true},
                                   {.cells = {"also"}, .heading = true},
                                   {.cells = {"Model", "Tidewell"}},
                                   {.cells = {"A rather long name", ""}}},
                          .text = {}};
    EXPECT_EQ(pageAsText(page), "--- Drive ---\r\n\r\n"
                                "Name                Value\r\n"
                                "\r\nIdentity\r\nalso\r\n"
                                "Model               Tidewell\r\n"
                                "A rather long name\r\n");
    EXPECT_EQ(rowAsText(page.rows[2]), "Model\tTidewell");
}

TEST(DetailText, ALongCellPushesTheOthersAside) {
    const DetailPage page{
        .title = "T", .columns = {{"A", 1}, {"B", 1}}, .rows = {{.cells = {std::string(60, 'x'), "b"}}}, .text = {}};
    EXPECT_THAT(pageAsText(page), HasSubstr(std::string(60, 'x') + "  b\r\n"));
}

TEST(DetailText, HasAllPagesBelowTheDrive) {
    const std::vector<DetailPage> pages{{.title = "Report", .columns = {}, .rows = {}, .text = "raw\r\n"}};
    EXPECT_EQ(pagesAsText("Drive 3", pages), "Drive 3\r\n\r\n--- Report ---\r\n\r\nraw\r\n\r\n");
}

} // namespace

} // namespace torvane
