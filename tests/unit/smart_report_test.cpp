#include "monitoring/smart_report.h"

#include "tests/unit/huge_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

namespace torvane {

bool operator==(const AttributeFinding& left, const AttributeFinding& right) {
    return left.value == right.value && std::string(left.attribute) == right.attribute;
}

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A record as the probe leaves it.
DriveRecord probedRecord() {
    DriveRecord record;
    record.model.assign("probed model");
    record.serialNumber.assign("probed serial");
    record.busText.assign("Serial ATA");
    record.busCode = kBusCodeDirect;
    record.smartType = kSmartTypeStandard;
    record.smartLoaded = 1;
    return record;
}

struct Parsed {
    DriveRecord record;
    std::vector<AttributeFinding> findings;
    int result = -1;
};

/// The report's lines are given with LF alone, as they stand in a source file.
std::string withCrLf(const std::string& text) {
    std::string converted;
    for (const char byte : text) {
        converted += byte == '\n' ? std::string("\r\n") : std::string(1, byte);
    }
    return converted;
}

Parsed parse(const std::string& lines, DriveRecord record = probedRecord()) {
    Parsed parsed{std::move(record), {}, -1};
    parsed.record.smartText = withCrLf(lines);
    parsed.result = parseSmartReport(parsed.record, parsed.findings);
    return parsed;
}

std::string attribute(const std::string& name, const std::string& raw) {
    return "  5 " + name + "   PO--CK   100   100   010    -    " + raw + "\n";
}

std::string fixture(const std::string& name) {
    std::ifstream file(std::string(TORVANE_FIXTURES) + "/smart/" + name, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    EXPECT_FALSE(text.empty()) << "no fixture " << name;
    return text;
}

// --- The tool's own text

TEST(SmartReport, ReadsTheToolsReportOfAWornDisk) {
    const Parsed parsed = parse(fixture("worn-disk.txt"));
    const DriveRecord& record = parsed.record;
    EXPECT_EQ(parsed.result, 1);
    EXPECT_EQ(record.model.view(), "Tidewell TW1G Laptop Disk");
    EXPECT_EQ(record.serialNumber.view(), "TWC4118A");
    EXPECT_EQ(record.disk[Counter::kPowerOnHours], 31877);
    EXPECT_EQ(record.disk[Counter::kReallocatedSectors], 214);
    EXPECT_EQ(record.disk[Counter::kReportedUncorrectable], 41);
    EXPECT_EQ(record.disk[Counter::kReallocationEvents], 19);
    EXPECT_EQ(record.disk[Counter::kPendingSectors], 12);
    EXPECT_EQ(record.disk[Counter::kOfflineUncorrectable], 7);
    EXPECT_EQ(record.smartErrorFlag, kSmartErrorsFound);
    EXPECT_EQ(record.securityEnabled, 1);
    EXPECT_EQ(record.smartLoaded, 1);
    EXPECT_EQ(record.smartType, kSmartTypeStandard);
    EXPECT_EQ(record.busText.view(), "Serial ATA");
    EXPECT_EQ(record.busCode, kBusCodeDirect);
    ASSERT_EQ(record.uncLbaCount, 2) << "of three entries two name the same LBA";
    EXPECT_EQ(record.uncLbas[0], 65740);
    EXPECT_EQ(record.uncLbas[1], 131080);
    EXPECT_THAT(parsed.findings, ElementsAre(AttributeFinding{214, "Reallocated Sector Count"},
                                             AttributeFinding{41, "Reallocated Event Count"},
                                             AttributeFinding{19, "Reallocated Event Count"},
                                             AttributeFinding{12, "Current Pending Sector Count"},
                                             AttributeFinding{7, "Offline Uncorrectable Errors"}));
    EXPECT_EQ(SmartIsSolidStateDevice(record), 0);
}

TEST(SmartReport, ReadsTheNamesThatTheToolsTablesGiveFlashDrives) {
    const Parsed parsed = parse(fixture("nand-names.txt"));
    EXPECT_EQ(parsed.result, 1);
    EXPECT_EQ(parsed.record.disk[Counter::kReallocatedSectors], 214);
    EXPECT_EQ(parsed.record.disk[Counter::kPendingSectors], 12);
    EXPECT_EQ(parsed.record.smartType, kSmartTypeSsd);
    EXPECT_EQ(parsed.record.busText.view(), "SSD");
    EXPECT_EQ(parsed.record.busCode, kBusCodeOwnText);
}

// --- A report that tells of a failed SMART read

TEST(SmartReport, StopsAtAFailedSmartReadAndLeavesTheRest) {
    const Parsed parsed = parse("Device Model:     Other\nRead SMART Data failed: scsi error\n" +
                                attribute("Reallocated_Sector_Ct", "5"));
    EXPECT_EQ(parsed.result, 0);
    EXPECT_EQ(parsed.record.smartLoaded, 0);
    EXPECT_EQ(parsed.record.smartType, kSmartTypeNone);
    EXPECT_EQ(parsed.record.model.view(), "probed model");
    EXPECT_EQ(parsed.record.disk[Counter::kReallocatedSectors], kNotReported);
    EXPECT_EQ(parsed.record.smartErrorFlag, 0);
    EXPECT_THAT(parsed.findings, IsEmpty());
}

TEST(SmartReport, AnEmptyReportLeavesEverythingUnreported) {
    DriveRecord record = probedRecord();
    record.disk[Counter::kPowerOnHours] = 12;
    record.disk[Counter::kPendingSectors] = 3;
    record.uncLbaCount = 1;
    record.uncLbas[0] = 99;
    const Parsed parsed = parse("", record);
    EXPECT_EQ(parsed.result, 1);
    EXPECT_EQ(parsed.record.model.view(), "probed model");
    EXPECT_EQ(parsed.record.serialNumber.view(), "probed serial");
    EXPECT_EQ(parsed.record.disk[Counter::kPowerOnHours], kNotReported);
    EXPECT_EQ(parsed.record.disk[Counter::kPendingSectors], kNotReported);
    EXPECT_EQ(parsed.record.uncLbaCount, 0);
    EXPECT_EQ(parsed.record.uncLbas[0], 0);
    EXPECT_EQ(parsed.record.smartErrorFlag, kSmartNoErrors);
    EXPECT_EQ(parsed.record.smartType, kSmartTypeStandard);
}

// --- Identity

TEST(SmartReport, TakesModelAndSerialFromTheirThirdWordOn) {
    const Parsed parsed = parse("Device Model:     Torvane  Disk 4 TB \nSerial Number:    AB 12  C\n");
    EXPECT_EQ(parsed.record.model.view(), "Torvane  Disk 4 TB ");
    EXPECT_EQ(parsed.record.serialNumber.view(), "AB 12  C");
}

TEST(SmartReport, KeepsTheProbesTextsWhenTheToolFoundNone) {
    for (const char* const text : {"[No Information Found]", "[Nothing", ""}) {
        const Parsed parsed = parse(std::string("Device Model:     ") + text + "\nSerial Number:    " + text + "\n");
        EXPECT_EQ(parsed.record.model.view(), "probed model") << text;
        EXPECT_EQ(parsed.record.serialNumber.view(), "probed serial") << text;
    }
    EXPECT_EQ(parse("Device Model:     [NO] disk\n").record.model.view(), "[NO] disk");
}

TEST(SmartReport, CutsTextsAtTheirFields) {
    const Parsed parsed =
        parse("Device Model: " + std::string(5000, 'm') + "\nSerial Number: " + std::string(500, 's') + "\n");
    EXPECT_EQ(parsed.record.model.view(), std::string(255, 'm'));
    EXPECT_EQ(parsed.record.serialNumber.view(), std::string(127, 's'));
}

// --- Power-on hours

std::int32_t hoursOf(const std::string& lines) {
    return parse(lines).record.disk[Counter::kPowerOnHours];
}

TEST(SmartReport, ReadsPowerOnHours) {
    EXPECT_EQ(hoursOf("  9 Power_On_Hours          -O--CK   091   091   000    -    8123 (42 22 0)\n"), 8123);
    EXPECT_EQ(hoursOf(attribute("Power_On_Hours", "1234h+05m+10.123s")), 1234);
    EXPECT_EQ(hoursOf(attribute("Power_On_Hours", "0")), 0);
}

TEST(SmartReport, TakesPowerOnMinutesAsHoursAsTheyStand) {
    EXPECT_EQ(hoursOf(attribute("Power_On_Minutes", "600")), 600);
    EXPECT_EQ(hoursOf(attribute("Power_On_Minutes", "600") + attribute("Power_On_Hours", "10")), 10);
}

TEST(SmartReport, ReadsTheHoursOfAnNvmeReport) {
    EXPECT_EQ(hoursOf("Power On Hours:                     1,234\n"), 1234);
    EXPECT_EQ(hoursOf("Power On Hours:                     8,589,934,599\n"), 7) << "the low 32 bits";
    EXPECT_EQ(hoursOf("Power On Hours: 5\n" + attribute("Power_On_Minutes", "600")), 600);
}

TEST(SmartReport, LeavesTheHoursUnreportedWithoutTheirWord) {
    EXPECT_EQ(hoursOf("User Capacity: 1\n"), kNotReported);
    EXPECT_EQ(hoursOf("  9 Power_On_Hours -O--CK 091 091 000\n"), kNotReported);
    EXPECT_EQ(hoursOf("  9 Power_On_Hours -O--CK 091 091 000\n" + attribute("Power_On_Minutes", "600")), kNotReported)
        << "the first key's line decides";
    EXPECT_EQ(hoursOf("  9 Power_On_Minutes -O--CK 091\nPower On Hours: 5\n"), kNotReported);
    EXPECT_EQ(hoursOf("Power On Hours: \n"), kNotReported);
}

// --- Security

std::int32_t securityOf(const std::string& lines, std::int32_t before = 0) {
    DriveRecord record = probedRecord();
    record.securityEnabled = before;
    return parse(lines, record).record.securityEnabled;
}

TEST(SmartReport, SecurityIsEnabledOnlyInCapitals) {
    EXPECT_EQ(securityOf("ATA Security is:  ENABLED, PW level HIGH, not locked, frozen [SEC6]\n"), 1);
    EXPECT_EQ(securityOf("ATA Security is:  ENA x\n"), 1);
    EXPECT_EQ(securityOf("ATA Security is:  Enabled\n", 1), 0);
    EXPECT_EQ(securityOf("ATA Security is:  Disabled, frozen [SEC2]\n", 1), 0);
    EXPECT_EQ(securityOf("ATA Security is:  EN\n", 1), 0);
    EXPECT_EQ(securityOf("ATA Security is: \n", 1), 0);
}

TEST(SmartReport, SecurityStaysWithoutItsLine) {
    EXPECT_EQ(securityOf("SMART support is: Enabled\n", 1), 1);
    EXPECT_EQ(securityOf("SMART support is: Enabled\n", 0), 0);
}

// --- Error counters

TEST(SmartReport, AnAbsentCounterIsUnreportedAndNoError) {
    DriveRecord record = probedRecord();
    record.disk.fill(77);
    const Parsed parsed = parse(attribute("Temperature_Celsius", "31"), record);
    EXPECT_EQ(parsed.record.disk, Counters{});
    EXPECT_EQ(parsed.record.smartErrorFlag, kSmartNoErrors);
    EXPECT_THAT(parsed.findings, IsEmpty());
}

TEST(SmartReport, ZeroCountersAreNoError) {
    const Parsed parsed = parse(attribute("Reallocated_Sector_Ct", "0") + attribute("Reported_Uncorrect", "0") +
                                attribute("Reallocated_Event_Count", "0") + attribute("Current_Pending_Sector", "0") +
                                attribute("Offline_Uncorrectable", "0"));
    EXPECT_EQ(parsed.record.disk[Counter::kReallocatedSectors], 0);
    EXPECT_EQ(parsed.record.disk[Counter::kReportedUncorrectable], 0);
    EXPECT_EQ(parsed.record.disk[Counter::kReallocationEvents], 0);
    EXPECT_EQ(parsed.record.disk[Counter::kPendingSectors], 0);
    EXPECT_EQ(parsed.record.disk[Counter::kOfflineUncorrectable], 0);
    EXPECT_EQ(parsed.record.smartErrorFlag, kSmartNoErrors);
    EXPECT_THAT(parsed.findings, IsEmpty());
}

TEST(SmartReport, TheFallbackNameIsReadOnlyWithoutTheFirst) {
    const Parsed both = parse(attribute("Reallocated_Sector_Ct", "0") + attribute("Reallocate_NAND_Blk_Cnt", "5") +
                              attribute("Current_Pending_Sector", "0") + attribute("Current_Pending_ECC_Cnt", "6"));
    EXPECT_EQ(both.record.disk[Counter::kReallocatedSectors], 0);
    EXPECT_EQ(both.record.disk[Counter::kPendingSectors], 0);
    EXPECT_EQ(both.record.smartErrorFlag, kSmartNoErrors);

    const Parsed fallback =
        parse(attribute("Reallocate_NAND_Blk_Cnt", "5") + attribute("Current_Pending_ECC_Cnt", "6"));
    EXPECT_EQ(fallback.record.disk[Counter::kReallocatedSectors], 5);
    EXPECT_EQ(fallback.record.disk[Counter::kPendingSectors], 6);
    EXPECT_THAT(fallback.findings, ElementsAre(AttributeFinding{5, "Reallocated Sector Count"},
                                               AttributeFinding{6, "Current Pending Sector Count"}));
}

TEST(SmartReport, ACounterWithoutItsRawValueStaysAsItWas) {
    DriveRecord record = probedRecord();
    record.disk[Counter::kReallocatedSectors] = 77;
    record.disk[Counter::kReportedUncorrectable] = 77;
    record.disk[Counter::kPendingSectors] = 77;
    const Parsed parsed = parse("  5 Reallocated_Sector_Ct PO--CK 100 100 010\n"
                                "187 Reported_Uncorrect -O--CK 100\n"
                                "197 Current_Pending_Sector -O--CK 100\n" +
                                    attribute("Current_Pending_ECC_Cnt", "6"),
                                record);
    EXPECT_EQ(parsed.record.disk[Counter::kReallocatedSectors], 77);
    EXPECT_EQ(parsed.record.disk[Counter::kReportedUncorrectable], kNotReported) << "cleared before it is looked for";
    EXPECT_EQ(parsed.record.disk[Counter::kPendingSectors], 77) << "the first key's line decides";
    EXPECT_EQ(parsed.record.smartErrorFlag, kSmartNoErrors);
}

TEST(SmartReport, ARawValueBeyond32BitsIsAnErrorAllTheSame) {
    const Parsed parsed = parse(attribute("Reallocated_Sector_Ct", "4294967296"));
    EXPECT_EQ(parsed.record.disk[Counter::kReallocatedSectors], std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(parsed.record.smartErrorFlag, kSmartErrorsFound);
}

TEST(SmartReport, AKeyThatEndsItsLineIsNotSeen) {
    EXPECT_EQ(hoursOf("a b c d e f g 12 Power_On_Hours\n"), kNotReported);
    EXPECT_EQ(hoursOf("a b c d e f g 12 Power_On_Hours \n"), 12);
}

TEST(SmartReport, KeysAreFoundInAnyCase) {
    EXPECT_EQ(parse(attribute("REALLOCATED_SECTOR_CT", "3")).record.disk[Counter::kReallocatedSectors], 3);
}

// --- Solid-state devices

TEST(SmartReport, ASolidStateRotationRateSetsTypeAndBus) {
    const std::string line = "Rotation Rate:    Solid State Device\n";
    const Parsed direct = parse(line);
    EXPECT_EQ(direct.record.smartType, kSmartTypeSsd);
    EXPECT_EQ(direct.record.busText.view(), "SSD");
    EXPECT_EQ(direct.record.busCode, kBusCodeOwnText);

    DriveRecord usb = probedRecord();
    usb.busCode = kBusCodeUsb;
    const Parsed behindUsb = parse(line, usb);
    EXPECT_EQ(behindUsb.record.busText.view(), "USB SSD");
    EXPECT_EQ(behindUsb.record.busCode, kBusCodeOwnText);
}

TEST(SmartReport, ATurningDiskKeepsTypeAndBus) {
    for (const char* const line : {"Rotation Rate:    7200 rpm\n", "Rotation Rate:    solid State Device\n",
                                   "Rotation Rate: \n", "Rotation Rate     Solid State Device\n"}) {
        const Parsed parsed = parse(line);
        EXPECT_EQ(parsed.record.smartType, kSmartTypeStandard) << line;
        EXPECT_EQ(parsed.record.busCode, kBusCodeDirect) << line;
    }
}

TEST(SmartReport, IsSolidStateWhenAllThreeWordsBeginSo) {
    const auto isSolidState = [](const std::string& line) {
        return SmartIsSolidStateDevice(parse(line + "\n").record);
    };
    EXPECT_EQ(isSolidState("Rotation Rate:    Solid State Device"), 1);
    EXPECT_EQ(isSolidState("Rotation Rate:    Solidly Stated Devices"), 1);
    EXPECT_EQ(isSolidState("Rotation Rate -   Solid State Device"), 0) << "the words are counted from the line's start";
    EXPECT_EQ(isSolidState("Rotation Rate:    Solid State Drive"), 0);
    EXPECT_EQ(isSolidState("Rotation Rate:    Solid state Device"), 0);
    EXPECT_EQ(isSolidState("Rotation Rate:    Solid State"), 0);
    EXPECT_EQ(isSolidState("Rotation Rate:    7200 rpm"), 0);
    EXPECT_EQ(isSolidState("User Capacity:    Solid State Device"), 0);
}

const std::string kSolidState = "Rotation Rate:    Solid State Device\n";

DriveRecord recordWith(const std::string& lines, std::int32_t busCode) {
    DriveRecord record = probedRecord();
    record.busCode = busCode;
    record.smartText = withCrLf(lines);
    return record;
}

TEST(SsdCounters, AreReadFromTheirAttributes) {
    DriveRecord record =
        recordWith(kSolidState + attribute("Reallocated_Sector_Ct", "1") + attribute("Power_On_Hours", "2222") +
                       attribute("Uncorrectable_Error_Cnt", "3") + attribute("Reallocated_Event_Count", "4") +
                       attribute("Current_Pending_Sector", "5") + attribute("Offline_Uncorrectable", "6"),
                   kBusCodeDirect);
    EXPECT_EQ(SmartParseSsdCounters(record), 1);
    EXPECT_EQ(record.ssd[Counter::kReallocatedSectors], 1);
    EXPECT_EQ(record.ssd[Counter::kPowerOnHours], 2222);
    EXPECT_EQ(record.ssd[Counter::kReportedUncorrectable], 3);
    EXPECT_EQ(record.ssd[Counter::kReallocationEvents], 4);
    EXPECT_EQ(record.ssd[Counter::kPendingSectors], 5);
    EXPECT_EQ(record.ssd[Counter::kOfflineUncorrectable], 6);
    EXPECT_EQ(record.smartType, kSmartTypeSsd);
    EXPECT_EQ(record.disk, Counters{}) << "the other set is left alone";
}

TEST(SsdCounters, AreUnreportedWithoutAttributeOrRawValue) {
    DriveRecord record =
        recordWith(kSolidState + "  5 Reallocated_Sector_Ct PO--CK 100\n" + attribute("Reallocate_NAND_Blk_Cnt", "5") +
                       attribute("Reported_Uncorrect", "5"),
                   kBusCodeDirect);
    record.ssd.fill(9);
    EXPECT_EQ(SmartParseSsdCounters(record), 1);
    EXPECT_EQ(record.ssd, Counters{});
}

TEST(SsdCounters, TheBusTextFollowsTheBusCode) {
    const auto busTextFor = [](std::int32_t busCode) {
        DriveRecord record = recordWith(kSolidState, busCode);
        EXPECT_EQ(SmartParseSsdCounters(record), 1);
        EXPECT_EQ(record.busCode, busCode);
        return std::string(record.busText.view());
    };
    EXPECT_EQ(busTextFor(kBusCodeUsb), "SATA USB");
    EXPECT_EQ(busTextFor(kBusCodeDirect), "SATA SSD");
    EXPECT_EQ(busTextFor(kBusCodeNvme), "SATA NVME");
    EXPECT_EQ(busTextFor(kBusCodeFile), "Serial ATA");
    EXPECT_EQ(busTextFor(kBusCodeOwnText), "Serial ATA");
}

TEST(SsdCounters, ADriveThatIsNoSolidStateDeviceIsLeftAlone) {
    DriveRecord record = recordWith("Rotation Rate:    7200 rpm\n" + attribute("Power_On_Hours", "2222"), kBusCodeUsb);
    record.ssd[Counter::kPowerOnHours] = 9;
    EXPECT_EQ(SmartParseSsdCounters(record), 0);
    EXPECT_EQ(record.ssd[Counter::kPowerOnHours], 9);
    EXPECT_EQ(record.smartType, kSmartTypeStandard);
    EXPECT_EQ(record.busText.view(), "Serial ATA");

    DriveRecord withoutReport = probedRecord();
    EXPECT_EQ(SmartParseSsdCounters(withoutReport), 0);
}

// --- Error log

std::string unc(std::int64_t lba) {
    return "  40 -- 51 00 08 00 00 00 01 00 cc 40 00  Error: UNC at LBA = 0x000100cc = " + std::to_string(lba) + "\n";
}

std::vector<std::int64_t> lbasOf(const std::string& lines) {
    const DriveRecord record = parse(lines).record;
    EXPECT_LE(record.uncLbaCount, 50);
    return {record.uncLbas.begin(), record.uncLbas.begin() + record.uncLbaCount};
}

TEST(ErrorLog, ListsDistinctLbasInTheirOrder) {
    EXPECT_THAT(lbasOf(unc(100) + unc(200) + unc(100)), ElementsAre(100, 200));
    EXPECT_THAT(lbasOf("No Errors Logged\n"), IsEmpty());
    EXPECT_THAT(lbasOf(unc(0)), ElementsAre(0));
}

TEST(ErrorLog, KeepsLbasOf48BitsAndMore) {
    EXPECT_THAT(lbasOf(unc(281'474'976'710'655)), ElementsAre(281'474'976'710'655));
    EXPECT_THAT(lbasOf("  40 -- 51 00 08 00 00 00 01 00 cc 40 00  Error: UNC at LBA = 0x0 = 99999999999999999999\n"),
                ElementsAre(std::numeric_limits<std::int64_t>::max()));
}

// The tool prints the eight newest errors, whatever the drive keeps; a longer log comes from another tool's version.
TEST(ErrorLog, HasRoomForFifty) {
    std::string lines;
    for (int i = 0; i < 60; ++i) {
        lines += unc(1000 + i);
        lines += unc(1000);
    }
    const std::vector<std::int64_t> lbas = lbasOf(lines);
    ASSERT_EQ(lbas.size(), 50U);
    EXPECT_EQ(lbas.front(), 1000);
    EXPECT_EQ(lbas.back(), 1049);
}

TEST(ErrorLog, PassesOverOtherErrorsAndShortLines) {
    EXPECT_THAT(lbasOf("  10 -- 51 00 08 00 00 00 01 00 cc 40 00  Error: IDNF at LBA = 0x000100cc = 65740\n"
                       "  Error: UNC at LBA = 0x10 = 16\n" +
                       unc(300)),
                ElementsAre(300));
}

// --- Absurd input

TEST(SmartReport, SurvivesEveryPrefixOfAReport) {
    const std::string report = fixture("worn-disk.txt");
    for (std::size_t length = 0; length < report.size(); length += 7) {
        const Parsed parsed = parse(report.substr(0, length));
        EXPECT_EQ(parsed.result, 1);
        EXPECT_LE(parsed.record.uncLbaCount, 2);
    }
}

TEST(SmartReport, TakesNoNoticeOfNulAndInvalidUtf8) {
    DriveRecord record = probedRecord();
    record.smartText = std::string("Device Model:     A\xFF\xFE\x80\r\n\0Serial Number:    HIDDEN\r\n", 48);
    std::vector<AttributeFinding> findings;
    EXPECT_EQ(parseSmartReport(record, findings), 1);
    EXPECT_EQ(record.model.view(), "A\xFF\xFE\x80");
    EXPECT_EQ(record.serialNumber.view(), "probed serial");
}

TEST(SmartReport, ParsesAHugeReportInTime) {
    std::string report;
    const std::string part = withCrLf(attribute("Temperature_Celsius", "31") + unc(5) + std::string(200, 'x') + "\n");
    while (report.size() < testing::kHugeText) {
        report += part;
    }
    report += withCrLf(attribute("Offline_Uncorrectable", "3"));
    DriveRecord record = probedRecord();
    record.smartText = std::move(report);
    std::vector<AttributeFinding> findings;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(parseSmartReport(record, findings), 1);
    EXPECT_EQ(SmartParseSsdCounters(record), 0);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin;
    EXPECT_EQ(record.disk[Counter::kOfflineUncorrectable], 3);
    EXPECT_EQ(record.uncLbaCount, 1);
    RecordProperty("milliseconds", static_cast<int>(elapsed.count() * 1000));
    EXPECT_LT(elapsed.count(), testing::kHugeTextSeconds);
}

TEST(SmartReport, ParsesLinesOfAHundredThousandBytesInTime) {
    std::string report;
    while (report.size() < testing::kHugeText) {
        report += attribute("Temperature_Celsius", std::string(100'000, '7'));
    }
    DriveRecord record = probedRecord();
    record.smartText = withCrLf(report);
    std::vector<AttributeFinding> findings;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(parseSmartReport(record, findings), 1);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin;
    EXPECT_LT(elapsed.count(), testing::kHugeTextSeconds);
}

TEST(ReportedSerialNumber, IsTheOneOfItsLineOrEmpty) {
    EXPECT_EQ(reportedSerialNumber("Device Model:     Disk\r\nSerial Number:    AB12\r\n"), "AB12");
    EXPECT_EQ(reportedSerialNumber("Device Model:     Disk\r\n"), "");
    EXPECT_EQ(reportedSerialNumber(""), "");
}

} // namespace
} // namespace torvane
