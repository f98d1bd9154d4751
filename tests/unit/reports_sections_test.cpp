#include "reports/report_sections.h"

#include "records/drive_record.h"
#include "tests/unit/reports_test_drives.h"

#include <gtest/gtest.h>

#include <iterator>
#include <limits>

namespace torvane {
namespace {

using Icon = std::optional<ReportIcon>;

void expectSection(const ReportSection& section, const char* title, const char* explanation, const char* recommendation,
                   Icon icon) {
    EXPECT_EQ(section.title, title);
    EXPECT_EQ(section.explanation, explanation);
    EXPECT_EQ(section.recommendation, recommendation);
    EXPECT_EQ(section.icon, icon) << title;
}

TEST(AtaSections, ExplainEveryCounter) {
    const ReportSections sections = ataSections(testing::reportedDrive());
    ASSERT_EQ(sections.size(), 6U);
    expectSection(sections[0], "Power On  Hours",
                  "09 = The number of Powered On Hours this device has been in use = [3.00] years",
                  "It is recommended to replace the drive if this value exceeds 5 years", ReportIcon::kBlue);
    expectSection(sections[1], "Moved Errors", "05 = [7] Bad sectors have been identified and remapped.",
                  "It is recommended to replace the drive if this value exceeds 50", ReportIcon::kYellow);
    expectSection(sections[2], "Slow Sectors", "C4 = [3] Total Sector Remapping attempts.",
                  "Excessive attempts is a sign of ongoing failure.Replace the drive if this value exceeds 10",
                  ReportIcon::kBlue);
    expectSection(sections[3], "Pending Sectors",
                  "C5 = [12] Damaged sectors flagged to be remapped to the Spare area of the device.",
                  "Indicates sign of increasing failure and drive should be replaced", ReportIcon::kRed);
    expectSection(sections[4], "Uncorrectable Errors", "C6 = [6] Uncorrectable Sector Read/Write attempts.",
                  "Disk surface Defects and/or drive mechanics. Drive should be replaced", ReportIcon::kYellow);
    expectSection(sections[5], "Reported Errors", "BB = [0] Total reported unrecoverable errors using hardware (ECC)",
                  "Any value other than zero should flag a drive for replacement", ReportIcon::kGreen);
}

TEST(AtaSections, YearsHaveTwoDecimals) {
    DriveRecord drive;
    drive.disk[Counter::kPowerOnHours] = 12'345;
    EXPECT_EQ(ataSections(drive)[0].explanation,
              "09 = The number of Powered On Hours this device has been in use = [1.41] years");
    drive.disk[Counter::kPowerOnHours] = 0;
    EXPECT_EQ(ataSections(drive)[0].explanation,
              "09 = The number of Powered On Hours this device has been in use = [0.00] years");
}

TEST(AtaSections, ValuesThatAreNotReportedAreAbsent) {
    const DriveRecord drive;
    const char* const titles[] = {"Power On  Hours", "Moved Errors",         "Slow Sectors",
                                  "Pending Sectors", "Uncorrectable Errors", "Reported Errors"};
    const ReportSections sections = ataSections(drive);
    ASSERT_EQ(sections.size(), std::size(titles));
    for (std::size_t i = 0; i < sections.size(); ++i) {
        expectSection(sections[i], titles[i], "ABSENT", "", std::nullopt);
    }
}

TEST(AtaSections, OneValueThatIsNotReportedLeavesTheOthers) {
    DriveRecord drive = testing::reportedDrive();
    drive.disk[Counter::kOfflineUncorrectable] = kNotReported;
    const ReportSections sections = ataSections(drive);
    expectSection(sections[4], "Uncorrectable Errors", "ABSENT", "", std::nullopt);
    EXPECT_EQ(sections[3].icon, Icon(ReportIcon::kRed));
    EXPECT_EQ(sections[5].icon, Icon(ReportIcon::kGreen));
}

TEST(AtaSections, OtherNegativeCountsAreShownAsTheyAre) {
    DriveRecord drive;
    drive.disk[Counter::kPendingSectors] = -2;
    const ReportSection section = ataSections(drive)[3];
    EXPECT_EQ(section.explanation, "C5 = [-2] Damaged sectors flagged to be remapped to the Spare area of the device.");
    EXPECT_EQ(section.icon, Icon(ReportIcon::kRed));
}

TEST(NvmeSections, TellThatAllIsWell) {
    const ReportSections sections = nvmeSections(testing::reportedDrive());
    ASSERT_EQ(sections.size(), 6U);
    expectSection(sections[0], "Total Data Written to the Drive", "953 Gigabytes of data has been written to the drive",
                  "Standard Manufacturer Thresholds are between 70,000 and 150,000 Gigabytes", ReportIcon::kGreen);
    expectSection(sections[1], "Available Spare Space",
                  "Available Spare is at 97 percent. Failure Threshold is 10 percent",
                  "This data indicates that your drive is within  manufacturer thresholds", ReportIcon::kGreen);
    expectSection(sections[2], "Tempeature Threshold",
                  "Temperature Threshold for upper and lower manufacturer specifications",
                  "Drives current temperature threshold is within norms", ReportIcon::kGreen);
    expectSection(sections[3], "Non-Volatile Memory Sub-System",
                  "NVM Sub System Reliability may be degraded due to media or internal errors",
                  "NVM Sub-System flag indicates that this device is not degraded.", ReportIcon::kGreen);
    expectSection(sections[4], "Read Only Mode Set", "Drive may be set into a read-only state to prevent damage",
                  "Your drive is currently in a normal state", std::nullopt);
    expectSection(sections[5], "Volatile Memory Backup Device",
                  "Volatile Memory Backup Systems current state of operation indicates that",
                  "your drives VM Backup System is in a normal state (If Available)", ReportIcon::kGreen);
}

/// The second line and the icon of a section, under one bit of the critical warning.
struct Warning {
    std::int32_t bit;
    std::size_t section;
    const char* line;
    Icon icon;
};

constexpr Warning kWarnings[] = {
    {0x01, 1, "This data indicates that your drive is outside  manufacturer thresholds", ReportIcon::kGreen},
    {0x02, 2, "Drives current temperature threshold is outside of norms", ReportIcon::kYellow},
    {0x04, 3, "NVM Sub-System flag indicates that this device is degraded.", ReportIcon::kYellow},
    {0x08, 4, "Your drive is currently in a read only critical state", std::nullopt},
    {0x10, 5, "your drives VM Backup System is in a critically damaged state (If Available)", ReportIcon::kYellow},
};

TEST(NvmeSections, EachWarningBitChangesItsSectionAlone) {
    const ReportSections well = nvmeSections(testing::reportedDrive());
    for (const Warning& warning : kWarnings) {
        DriveRecord drive = testing::reportedDrive();
        drive.nvme.criticalWarning = warning.bit;
        const ReportSections sections = nvmeSections(drive);
        for (std::size_t i = 0; i < sections.size(); ++i) {
            EXPECT_EQ(sections[i].recommendation, i == warning.section ? warning.line : well[i].recommendation);
            EXPECT_EQ(sections[i].icon, i == warning.section ? warning.icon : well[i].icon) << i;
        }
    }
}

TEST(NvmeSections, TheSpareIconLooksAtTheSpareAndNotAtTheWarning) {
    DriveRecord drive = testing::reportedDrive();
    drive.nvme.availableSpare = 10;
    const ReportSection section = nvmeSections(drive)[1];
    EXPECT_EQ(section.recommendation, "This data indicates that your drive is within  manufacturer thresholds");
    EXPECT_EQ(section.icon, Icon(ReportIcon::kYellow));
}

TEST(NvmeSections, WhatWasNotReadIsUnknown) {
    DriveRecord drive;
    drive.nvme = {.criticalWarning = kNotReported,
                  .availableSpare = kNotReported,
                  .availableSpareThreshold = kNotReported,
                  .dataUnitsWritten = kNotReported,
                  .gigabytesWritten = static_cast<std::uint64_t>(kNotReported)};
    const char* const titles[] = {
        "Total Data Written to the Drive", "Available Spare Space", "Tempeature Threshold",
        "Non-Volatile Memory Sub-System",  "Read Only Mode Set",    "Volatile Memory Backup Device"};
    const ReportSections sections = nvmeSections(drive);
    ASSERT_EQ(sections.size(), std::size(titles));
    for (std::size_t i = 0; i < sections.size(); ++i) {
        expectSection(sections[i], titles[i], "UNKNOWN", "", std::nullopt);
    }
}

TEST(NvmeSections, AWarningByteOf255IsUnknown) {
    DriveRecord drive = testing::reportedDrive();
    drive.nvme.criticalWarning = 255;
    const ReportSections sections = nvmeSections(drive);
    EXPECT_EQ(sections[0].icon, Icon(ReportIcon::kGreen));
    EXPECT_EQ(sections[1].icon, Icon(ReportIcon::kGreen)) << "the spare is known all the same";
    for (std::size_t i = 2; i < sections.size(); ++i) {
        EXPECT_EQ(sections[i].explanation, "UNKNOWN") << i;
        EXPECT_EQ(sections[i].icon, std::nullopt) << i;
    }
}

TEST(NvmeSections, GigabytesTake64Bits) {
    DriveRecord drive = testing::reportedDrive();
    drive.nvme.gigabytesWritten = 17'179'869'183;
    EXPECT_EQ(nvmeSections(drive)[0].explanation, "17179869183 Gigabytes of data has been written to the drive");
    EXPECT_EQ(nvmeSections(drive)[0].icon, Icon(ReportIcon::kYellow));
}

std::string testResult(ReadTestResult result) {
    std::string line = "what was there before";
    FormatTestResult(line, "Short Test", result);
    return line;
}

TEST(TestResults, HaveFourWordings) {
    EXPECT_EQ(testResult(ReadTestResult::kNotPerformed), "Short Test not performed");
    EXPECT_EQ(testResult(ReadTestResult::kFailed), "Short Test FAILED");
    EXPECT_EQ(testResult(ReadTestResult::kPassed), "Short Test PASSED");
    EXPECT_EQ(testResult(ReadTestResult::kTerminated), "Short Test TERMINATED");
}

TEST(TestResults, AnyOtherCodeIsNotPerformed) {
    for (const std::int32_t code : {0, -1, 999, 1004}) {
        EXPECT_EQ(testResult(static_cast<ReadTestResult>(code)), "Short Test not performed") << code;
    }
}

TEST(TestResults, OfARecordThatNoTestTouchedAreNotPerformed) {
    const DriveRecord drive;
    for (const ReadTestResult result : {drive.shortTestResult, drive.criticalTestResult, drive.nistTestResult}) {
        EXPECT_EQ(testResult(result), "Short Test not performed");
    }
}

} // namespace
} // namespace torvane
