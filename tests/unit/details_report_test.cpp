#include "details/report_lines.h"
#include "details/tool_report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace torvane {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

// --- Lines

TEST(ReportLines, PartsWordsByBlanks) {
    EXPECT_THAT(wordsOf("  a  bc   d "), ElementsAre("a", "bc", "d"));
    EXPECT_THAT(wordsOf("   "), IsEmpty());
    EXPECT_EQ(withSingleBlanks("  Lifetime    Min/Max "), "Lifetime Min/Max");
}

TEST(ReportLines, ReadsAFieldByColonOrEquals) {
    EXPECT_EQ(fieldLine("Device Model:     Tidewell TW1G"), (ReportField{"Device Model", "Tidewell TW1G"}));
    EXPECT_EQ(fieldLine("  Blocks sent to initiator = 12"), (ReportField{"Blocks sent to initiator", "12"}));
    EXPECT_EQ(fieldLine("Total: a = b"), (ReportField{"Total", "a = b"}));
    EXPECT_FALSE(fieldLine("a sentence without a value"));
    EXPECT_FALSE(fieldLine("   : a value without a name"));
    EXPECT_FALSE(fieldLine(""));
}

TEST(ReportLines, ReadsAnAttributeInBothForms) {
    const SmartAttribute expected{.id = "194",
                                  .name = "Temperature_Celsius",
                                  .raw = "32 (Min/Max 21/38)",
                                  .value = "187",
                                  .worst = "180",
                                  .threshold = "000",
                                  .failed = "-"};
    EXPECT_EQ(attributeLine("194 Temperature_Celsius     -O----   187   180   000    -    32 (Min/Max 21/38)"),
              expected);
    EXPECT_EQ(attributeLine("194 Temperature_Celsius     0x0002   187   180   000    Old_age   Always       -       32 "
                            "(Min/Max 21/38)"),
              expected);
}

TEST(ReportLines, LeavesOutWhatIsNoAttribute) {
    EXPECT_FALSE(attributeLine("                            ||||||_ K auto-keep"));
    EXPECT_FALSE(attributeLine("  5 Reallocated_Sector_Ct   PO--CK   088"));
    EXPECT_FALSE(attributeLine("  5 Reallocated_Sector_Ct   0x0033   088   088   005    Pre-fail  Always"));
    EXPECT_FALSE(attributeLine("x 5 Reallocated_Sector_Ct   PO--CK   088   088   005    -    214"));
}

TEST(ReportLines, ReadsAnAttributeWithoutItsRawValue) {
    const auto attribute = attributeLine("0x05 Reallocated_Sector_Ct   PO--CK   ---   ---   ---    NOW");
    ASSERT_TRUE(attribute);
    EXPECT_EQ(attribute->id, "0x05");
    EXPECT_EQ(attribute->failed, "NOW");
    EXPECT_EQ(attribute->raw, "");
}

TEST(ReportLines, ReadsSelfTestsOfEachKind) {
    EXPECT_EQ(selfTestLine("# 2  Short offline       Completed: read failure       90%     31874         1289345"),
              (SelfTest{"2", "Short offline", "Completed: read failure", "90%", "31874", "1289345"}));
    // A status of its column's width.
    EXPECT_EQ(selfTestLine("#10  Extended offline    Self-test routine in progress 60%        72         -"),
              (SelfTest{"10", "Extended offline", "Self-test routine in progress", "60%", "72", "-"}));
    EXPECT_EQ(
        selfTestLine("# 1  Background short  Completed                   -    8765                 - [-   -    -]"),
        (SelfTest{"1", "Background short", "Completed", "-", "8765", "- [-"}));
    EXPECT_EQ(
        nvmeSelfTestLine(" 0   Short             Completed without error              1234            -     -   -"),
        (SelfTest{"0", "Short", "Completed without error", "", "1234", "-"}));
}

TEST(ReportLines, LeavesOutWhatIsNoSelfTest) {
    EXPECT_FALSE(selfTestLine("Num  Test_Description    Status                  Remaining"));
    EXPECT_FALSE(selfTestLine("# 1  Short"));
    EXPECT_FALSE(selfTestLine("# 1  Short offline  100%"));
    EXPECT_FALSE(nvmeSelfTestLine("Num  Test_Description  Status                       Power_on_Hours"));
    EXPECT_FALSE(nvmeSelfTestLine(" 0   Short"));
}

TEST(ReportLines, ReadsAnErrorsHeadAndBody) {
    auto error = errorHeadLine("Error 2 [1] occurred at disk power-on lifetime: 20465 hours (852 days + 17 hours)");
    ASSERT_TRUE(error);
    EXPECT_EQ(error->number, "2");
    EXPECT_EQ(error->hours, "20465");
    takeErrorLine("  84 -- 41 00 18 00  Error: ICRC, ABRT at LBA = 0x9d000840 = 2634025024", *error);
    EXPECT_EQ(error->error, "ICRC, ABRT");
    EXPECT_EQ(error->lba, "2634025024");
    LoggedError other;
    takeErrorLine("  04 -- 41 00 18 00  Error: ABRT", other);
    EXPECT_EQ(other.error, "ABRT");
    EXPECT_EQ(other.lba, "");
    takeErrorLine("nothing of the kind", other);
    EXPECT_EQ(other.error, "ABRT");
    EXPECT_FALSE(errorHeadLine("Error 3 [2] log entry is empty"));
    EXPECT_FALSE(errorHeadLine("Error log at power-on lifetime:"));
    EXPECT_EQ(errorHeadLine("Error 2 occurred at disk power-on lifetime:")->hours, "");
}

TEST(ReportLines, ReadsAnNvmeError) {
    const auto error =
        nvmeErrorLine("  0         12     0  0x0004  0x4016  0x004            7     1     -  Invalid Field");
    ASSERT_TRUE(error);
    EXPECT_EQ(error->number, "12");
    EXPECT_EQ(error->error, "status 0x4016 Invalid Field");
    EXPECT_EQ(error->lba, "7");
    EXPECT_EQ(nvmeErrorLine("  0         12     0  0x0004  0x4016  0x004            7     1     -")->error,
              "status 0x4016");
    EXPECT_FALSE(nvmeErrorLine("Num   ErrCount  SQId   CmdId  Status  PELoc          LBA  NSID    VS  Message"));
    EXPECT_FALSE(nvmeErrorLine("  0 12"));
}

TEST(ReportLines, ReadsStatisticsWithAndWithoutFlags) {
    EXPECT_EQ(statisticLine("0x01  0x010  4           32508  ---  Power-on Hours"),
              (Statistic{"", "Power-on Hours", "32508", false}));
    EXPECT_EQ(statisticLine("0x05  0x020  1              71  NDC+ Highest Temperature"),
              (Statistic{"", "Highest Temperature", "71", true}));
    EXPECT_EQ(statisticLine("0x01  0x010  4           32508  Power-on Hours"),
              (Statistic{"", "Power-on Hours", "32508", false}));
    EXPECT_FALSE(statisticLine("0x01  0x010  4           32508  ---"));
    EXPECT_FALSE(statisticLine("0x01  =====  =               =  ===  == General Statistics (rev 1) =="));
    EXPECT_FALSE(statisticLine("0x01  0x010"));
    EXPECT_EQ(statisticsGroupLine("0x01  =====  =               =  ===  == General Statistics (rev 1) =="),
              "General Statistics");
    EXPECT_FALSE(statisticsGroupLine("0x01  0x010  4           32508  ---  Power-on Hours"));
    EXPECT_FALSE(statisticsGroupLine("  =====  == General"));
    EXPECT_FALSE(statisticsGroupLine("0x01  ====="));
}

TEST(ReportLines, ReadsInterfaceCounters) {
    EXPECT_EQ(interfaceCounterLine("0x000b  2            3  CRC errors within host-to-device FIS"),
              (Statistic{"", "CRC errors within host-to-device FIS", "3", false}));
    EXPECT_FALSE(interfaceCounterLine("ID      Size     Value  Description"));
    EXPECT_FALSE(interfaceCounterLine("0x000b  2            3"));
}

TEST(ReportLines, SaysScsiErrorCountersInWords) {
    EXPECT_EQ(
        scsiErrorCounterLine("read:   1234567        8         9   1234584         10        123.456           2"),
        (ReportField{"Read errors",
                     "uncorrected 2, corrected 1234584 (fast 1234567, delayed 8, by repetition 9), moved "
                     "123.456 GB"}));
    EXPECT_FALSE(
        scsiErrorCounterLine("           fast | delayed   rewrites  corrected  invocations   [10^9 bytes]  errors"));
    EXPECT_FALSE(scsiErrorCounterLine(": 1 2 3 4 5 6 7"));
    EXPECT_FALSE(scsiErrorCounterLine("read: 1"));
}

// --- Whole reports

constexpr const char* kAtaReport = R"(smartctl 7.3

=== START OF INFORMATION SECTION ===
Device Model:     Tidewell TW1G Laptop Disk
ATA Security is:  Disabled, frozen [SEC2]

=== START OF READ SMART DATA SECTION ===
SMART Status: 0xc24f (PASSED)
SMART overall-health self-assessment test result: FAILED!
Drive failure expected in less than 24 hours. SAVE ALL DATA.
Failed Attributes:
ID# ATTRIBUTE_NAME          FLAGS    VALUE WORST THRESH FAIL RAW_VALUE
  5 Reallocated_Sector_Ct   PO--CK   001   001   005    NOW  900

General SMART Values:
Short self-test routine 
recommended polling time: 	 (   1) minutes.
Extended self-test routine
recommended polling time: 	 ( 988) minutes.
Conveyance self-test routine
recommended polling time: 	 none
recommended polling time: 	 ( 7) minutes.
SMART Attributes Data Structure revision number: 16
ID# ATTRIBUTE_NAME          FLAGS    VALUE WORST THRESH FAIL RAW_VALUE
  5 Reallocated_Sector_Ct   PO--CK   001   001   005    NOW  900
  9 Power_On_Hours          -O--C-   069   069   000    -    31877
                            ||||||_ K auto-keep

General Purpose Log Directory Version 1
0x00       GPL,SL  R/O      1  Log Directory

SMART Extended Comprehensive Error Log Version: 1 (1 sectors)
Device Error Count: 2
	CR     = Command Register

Error 2 [1] occurred at disk power-on lifetime: 300 hours (12 days + 12 hours)
  When the command that caused the error occurred, the device was active or idle.
  ER -- ST COUNT  LBA_48  LH LM LL DV DC
  -- -- -- == -- == == == -- -- -- -- --
  40 -- 41 00 00 00 00 00 00 00 10 00 00  Error: UNC at LBA = 0x00000010 = 16

  Commands leading to the command that caused the error were:
  CR FEATR COUNT  LBA_48  LH LM LL DV DC  Powered_Up_Time  Command/Feature_Name
  -- == -- == -- == == == -- -- -- -- --  ---------------  --------------------
  60 00 07 00 18 00 00 94 c1 3e ec 40 00  1d+01:02:03.004  READ FPDMA QUEUED
  ea 00 01 00 f8 00 00 2b 50 08 df 40 00  1d+01:02:03.003  FLUSH CACHE EXT

Error 1 [0] occurred at disk power-on lifetime: 299 hours (12 days + 11 hours)
  04 -- 41 00 00 00 00 00 00 00 10 00 00  Error: ABRT

SMART Extended Self-test Log Version: 1 (1 sectors)
Num  Test_Description    Status                  Remaining  LifeTime(hours)  LBA_of_first_error
# 1  Short offline       Completed without error       00%        72         -

SMART Selective self-test log data structure revision number 1
    1        0        0  Not_testing

SCT Status Version:                  3
Device State:                        Active (0)
Current Temperature:                    32 Celsius
Under/Over Temperature Limit Count:   0/1
SCT Temperature History Version:     2
Min/Max recommended Temperature:      0/60 Celsius
Temperature History Size (Index):    128 (111)
SCT Error Recovery Control:
           Read:     70 (7.0 seconds)

Device Statistics (GP Log 0x04)
Page  Offset Size        Value Flags Description
0x01  =====  =               =  ===  == General Statistics (rev 1) ==
0x01  0x008  4              41  ---  Lifetime Power-On Resets

Pending Defects log (GP Log 0x0c)
Index                LBA    Hours
    0          123456       77

SATA Phy Event Counters (GP Log 0x11)
ID      Size     Value  Description
0x0001  2            5  Command failed due to ICRC error
)";

TEST(ToolReport, ReadsAnAtaReport) {
    const ToolReport report = readToolReport(kAtaReport);
    EXPECT_EQ(fieldOf(report.identity, "Device Model"), "Tidewell TW1G Laptop Disk");
    EXPECT_EQ(fieldOf(report.identity, "Serial Number"), "");
    EXPECT_EQ(report.verdict, "FAILED!");
    // The list of the failed ones alone is followed by that of all.
    ASSERT_THAT(report.attributes, SizeIs(2));
    EXPECT_EQ(report.attributes[0].failed, "NOW");
    EXPECT_EQ(report.attributes[1].raw, "31877");
    EXPECT_THAT(report.errorNotes, ElementsAre("Device Error Count: 2"));
    EXPECT_THAT(report.errors, ElementsAre(LoggedError{"2", "300", "UNC", "16", "READ FPDMA QUEUED"},
                                           LoggedError{"1", "299", "ABRT", "", ""}));
    EXPECT_THAT(report.selfTestNotes,
                ElementsAre("Short self-test: takes about 1 minute", "Extended self-test: takes about 988 minutes"));
    EXPECT_THAT(report.selfTests,
                ElementsAre(SelfTest{"1", "Short offline", "Completed without error", "00%", "72", "-"}));
    EXPECT_THAT(report.temperatures, ElementsAre(ReportField{"Current Temperature", "32 Celsius"},
                                                 ReportField{"Under/Over Temperature Limit Count", "0/1"},
                                                 ReportField{"Min/Max recommended Temperature", "0/60 Celsius"}));
    EXPECT_THAT(report.statistics,
                ElementsAre(Statistic{"General Statistics", "Lifetime Power-On Resets", "41", false},
                            Statistic{"Pending defects", "Unreadable sector 0", "LBA 123456", false},
                            Statistic{"SATA interface", "Command failed due to ICRC error", "5", false}));
    EXPECT_THAT(report.nvmeHealth, IsEmpty());
    EXPECT_THAT(report.scsiHealth, IsEmpty());
}

TEST(ToolReport, TakesNothingFromADriveThatDidNotAnswerAsItWasAsked) {
    const ToolReport report = readToolReport("=== START OF INFORMATION SECTION ===\n"
                                             "Device Model:     [No Information Found]\n"
                                             "ATA Version is:   [No Information Found]\n"
                                             "ATA Security is:  Unavailable\n"
                                             "Read SMART Data failed: scsi error unsupported scsi opcode\n"
                                             "SMART overall-health self-assessment test result: UNKNOWN!\n");
    EXPECT_THAT(report.identity, IsEmpty());
    EXPECT_THAT(report.failures, IsEmpty());
    EXPECT_EQ(report.verdict, "");
    const ToolReport other = readToolReport("=== START OF INFORMATION SECTION ===\n"
                                            "Device Model:     HALDANE\nSerial Number:    [No Information Found]\n");
    EXPECT_THAT(other.identity, ElementsAre(ReportField{"Device Model", "HALDANE"}));
}

TEST(ToolReport, ReadsEmptyLogs) {
    const ToolReport report = readToolReport("SMART Error Log Version: 1\nNo Errors Logged\n"
                                             "SMART Self-test log structure revision number 1\n"
                                             "No self-tests have been logged.  [To run self-tests, use: smartctl -t]\n"
                                             "Pending Defects log (GP Log 0x0c)\nNo Defects Logged\n");
    EXPECT_THAT(report.errorNotes, ElementsAre("No Errors Logged"));
    EXPECT_THAT(report.errors, IsEmpty());
    EXPECT_THAT(report.selfTestNotes, ElementsAre("No self-tests have been logged."));
    EXPECT_THAT(report.statistics,
                ElementsAre(Statistic{"Pending defects", "Sectors that wait to be replaced", "0", false}));
}

constexpr const char* kNvmeReport = R"(=== START OF INFORMATION SECTION ===
Model Number:                       Harrowgate N512
=== START OF SMART DATA SECTION ===
SMART overall-health self-assessment test result: PASSED

SMART/Health Information (NVMe Log 0x02)
Critical Warning:                   0x00
Warning  Comp. Temperature Time:    4
Temperature Sensor 1:               33 Celsius

Error Information (NVMe Log 0x01, 16 of 64 entries)
Num   ErrCount  SQId   CmdId  Status  PELoc          LBA  NSID    VS
  0         12     0  0x0004  0x4016  0x004            0     1     -

Self-test Log (NVMe Log 0x06)
Self-test status: No self-test in progress
Num  Test_Description  Status                       Power_on_Hours  Failing_LBA  NSID Seg SCT Code
 0   Short             Completed without error                1234            -     -   -   -    -
Read Self-test Log failed: Invalid Field in Command (0x002)
)";

TEST(ToolReport, ReadsAnNvmeReport) {
    const ToolReport report = readToolReport(kNvmeReport);
    EXPECT_EQ(report.verdict, "PASSED");
    EXPECT_THAT(report.nvmeHealth,
                ElementsAre(ReportField{"Critical Warning", "0x00"}, ReportField{"Warning Comp. Temperature Time", "4"},
                            ReportField{"Temperature Sensor 1", "33 Celsius"}));
    EXPECT_THAT(report.errors, ElementsAre(LoggedError{"12", "", "status 0x4016", "0", ""}));
    EXPECT_THAT(report.selfTests, ElementsAre(SelfTest{"0", "Short", "Completed without error", "", "1234", "-"}));
    EXPECT_THAT(report.selfTestNotes, ElementsAre("Self-test status: No self-test in progress"));
    EXPECT_THAT(report.failures, ElementsAre("Read Self-test Log failed: Invalid Field in Command (0x002)"));
}

TEST(ToolReport, ReadsEmptyNvmeLogs) {
    const ToolReport report = readToolReport("Error Information (NVMe Log 0x01)\nNo Errors Logged\n"
                                             "Self-test Log (NVMe Log 0x06)\nNo Self-tests Logged\n");
    EXPECT_THAT(report.errorNotes, ElementsAre("No Errors Logged"));
    EXPECT_THAT(report.selfTestNotes, ElementsAre("No Self-tests Logged"));
}

constexpr const char* kScsiReport = R"(=== START OF INFORMATION SECTION ===
Vendor:               FERNDALE
Product:              FD6000NM
Transport protocol:   SAS (SPL-4)

=== START OF READ SMART DATA SECTION ===
SMART Health Status: OK

Current Drive Temperature:     30 C
Drive Trip Temperature:        60 C

Accumulated power on time, hours:minutes 12345:32
Manufactured in week 10 of year 2018
Elements in grown defect list: 3

Vendor (Seagate Cache) information
  Blocks sent to initiator = 1234

Error counter log:
           Errors Corrected by           Total   Correction     Gigabytes    Total
           fast | delayed   rewrites  corrected  invocations   [10^9 bytes]  errors
read:   1234567        0         0   1234567          0        123.456           1

Non-medium error count:        8

SMART Self-test log
Num  Test              Status                 segment  LifeTime  LBA_first_err [SK ASC ASQ]
# 1  Background short  Completed                   -    8765                 - [-   -    -]

Background scan results log
  Number of background scans performed: 78

Protocol Specific port log page for SAS SSP
  number of phys = 1
)";

TEST(ToolReport, ReadsAScsiReport) {
    const ToolReport report = readToolReport(kScsiReport);
    EXPECT_EQ(fieldOf(report.identity, "Vendor"), "FERNDALE");
    EXPECT_EQ(report.verdict, "OK");
    EXPECT_THAT(report.temperatures, ElementsAre(ReportField{"Current Drive Temperature", "30 C"},
                                                 ReportField{"Drive Trip Temperature", "60 C"}));
    EXPECT_EQ(fieldOf(report.scsiHealth, "Power-on time, hours:minutes"), "12345:32");
    EXPECT_EQ(fieldOf(report.scsiHealth, "Manufactured"), "week 10 of year 2018");
    EXPECT_EQ(fieldOf(report.scsiHealth, "Elements in grown defect list"), "3");
    EXPECT_EQ(fieldOf(report.scsiHealth, "Blocks sent to initiator"), "1234");
    EXPECT_EQ(fieldOf(report.scsiHealth, "Non-medium error count"), "8");
    EXPECT_EQ(fieldOf(report.scsiHealth, "Number of background scans performed"), "78");
    EXPECT_THAT(fieldOf(report.scsiHealth, "Read errors"), ::testing::StartsWith("uncorrected 1, corrected 1234567"));
    EXPECT_EQ(fieldOf(report.scsiHealth, "number of phys"), "");
    EXPECT_THAT(report.selfTests, SizeIs(1));
}

// --- Outside text

TEST(ToolReport, ReadsNothingInNothing) {
    for (const char* const text : {"", "\r\n", "no report at all\r\n", "Device Model: outside of every section\r\n"}) {
        const ToolReport report = readToolReport(text);
        EXPECT_THAT(report.identity, IsEmpty()) << text;
        EXPECT_EQ(report.verdict, "") << text;
    }
}

TEST(ToolReport, TakesBothLineEndsAndStopsAtANul) {
    using namespace std::string_literals;
    const ToolReport report = readToolReport("=== START OF INFORMATION SECTION ===\r\nDevice Model:\tA\x01"
                                             "B \r\nSerial Number: S\0\nFirmware Version: F\n"s);
    EXPECT_THAT(report.identity, ElementsAre(ReportField{"Device Model", "A B"}, ReportField{"Serial Number", "S"}));
}

TEST(ToolReport, KeepsSoManyEntriesAlone) {
    std::string text = "=== START OF INFORMATION SECTION ===\n";
    for (std::size_t i = 0; i < kMostReportEntries + 10; ++i) {
        text += "Name: value\n";
    }
    EXPECT_THAT(readToolReport(text).identity, SizeIs(kMostReportEntries));
}

} // namespace

} // namespace torvane
