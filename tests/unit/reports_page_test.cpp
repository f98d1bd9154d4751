#include "reports/report_page.h"

#include "tests/unit/reports_test_drives.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace torvane {

void PrintTo(const ReportLine& line, std::ostream* stream) {
    *stream << "{\"" << line.text << "\" at " << line.yFromTop << ", layout size " << line.layoutSize << ", font size "
            << line.fontSize << ", colour " << line.colour.red << ' ' << line.colour.green << ' ' << line.colour.blue
            << '}';
}

void PrintTo(const PlacedReportIcon& placed, std::ostream* stream) {
    *stream << "{icon " << static_cast<int>(placed.icon) << " at " << placed.fromRight << ", " << placed.fromTop << '}';
}

namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using Lines = std::vector<ReportLine>;

constexpr ReportColour kBlue{0, 0, 0.6F};
constexpr ReportColour kBlack{0, 0, 0};

ReportLine headerLine(int y, const char* text) {
    return {text, y, 18, 18, kBlue};
}

ReportLine bodyLine(int y, const char* text) {
    return {text, y, 18, 12, kBlack};
}

ReportLine testsTitle(int y) {
    return {"Read Test Results if Applicable", y, 18, 16, kBlack};
}

ReportLine bitLockerLine(int y, const char* text) {
    return {text, y, 10, 10, kBlack};
}

Lines headerLines() {
    return {headerLine(10, "Hard Drive Test Results"),
            headerLine(30, "Date: 03/07/2026"),
            headerLine(50, "Model: WDC WD10EZEX-08WN4A0"),
            headerLine(70, "Serial Num: WD-WCC6Y7ABCDEF"),
            headerLine(110, "Northgate Drive Rescue"),
            headerLine(130, "12 Harbour Road, Bristol"),
            headerLine(150, "+44 117 496 0123")};
}

Lines operator+(Lines lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

class ReportPages : public ::testing::Test {
  protected:
    [[nodiscard]] ReportFacts facts() const { return {drive_, company_, {2026, 3, 7}, {}, {}, {}}; }
    [[nodiscard]] Lines linesFrom(const ReportPage& page, int yFromTop) const {
        Lines lines;
        for (const ReportLine& line : page.lines) {
            if (line.yFromTop >= yFromTop) {
                lines.push_back(line);
            }
        }
        return lines;
    }

    DriveRecord drive_ = testing::reportedDrive();
    CompanyInfo company_ = testing::reportedCompany();
};

TEST_F(ReportPages, OfAnAtaDrive) {
    const ReportPage page = composeAtaReport(facts());
    EXPECT_THAT(
        page.lines,
        ElementsAreArray(
            headerLines() +
            Lines{bodyLine(200, "Power On  Hours"),
                  bodyLine(216, "09 = The number of Powered On Hours this device has been in use = [3.00] years"),
                  bodyLine(232, "It is recommended to replace the drive if this value exceeds 5 years"),
                  bodyLine(256, "Moved Errors"),
                  bodyLine(272, "05 = [7] Bad sectors have been identified and remapped."),
                  bodyLine(288, "It is recommended to replace the drive if this value exceeds 50"),
                  bodyLine(312, "Slow Sectors"),
                  bodyLine(328, "C4 = [3] Total Sector Remapping attempts."),
                  bodyLine(344, "Excessive attempts is a sign of ongoing failure.Replace the drive if this value "
                                "exceeds 10"),
                  bodyLine(368, "Pending Sectors"),
                  bodyLine(384, "C5 = [12] Damaged sectors flagged to be remapped to the Spare area of the device."),
                  bodyLine(400, "Indicates sign of increasing failure and drive should be replaced"),
                  bodyLine(424, "Uncorrectable Errors"),
                  bodyLine(440, "C6 = [6] Uncorrectable Sector Read/Write attempts."),
                  bodyLine(456, "Disk surface Defects and/or drive mechanics. Drive should be replaced"),
                  bodyLine(480, "Reported Errors"),
                  bodyLine(496, "BB = [0] Total reported unrecoverable errors using hardware (ECC)"),
                  bodyLine(512, "Any value other than zero should flag a drive for replacement"),
                  testsTitle(542),
                  bodyLine(562, "Critical Test PASSED"),
                  bodyLine(582, "Short Test FAILED"),
                  bodyLine(602, "NIST Test not performed")}));
    EXPECT_THAT(
        page.icons,
        ElementsAre(PlacedReportIcon{ReportIcon::kBlue, 60, 246}, PlacedReportIcon{ReportIcon::kYellow, 60, 302},
                    PlacedReportIcon{ReportIcon::kBlue, 60, 358}, PlacedReportIcon{ReportIcon::kRed, 60, 414},
                    PlacedReportIcon{ReportIcon::kYellow, 60, 470}, PlacedReportIcon{ReportIcon::kGreen, 60, 526}));
}

TEST_F(ReportPages, AnAbsentValueMovesNothingElse) {
    const Lines all = composeAtaReport(facts()).lines;
    drive_.disk[Counter::kReallocationEvents] = kNotReported;
    drive_.disk[Counter::kReportedUncorrectable] = kNotReported;
    Lines expected;
    for (const ReportLine& line : all) {
        if (line.yFromTop == 328 || line.yFromTop == 496) {
            expected.push_back(bodyLine(line.yFromTop, "ABSENT"));
        } else if (line.yFromTop != 344 && line.yFromTop != 512) {
            expected.push_back(line);
        }
    }
    const ReportPage page = composeAtaReport(facts());
    EXPECT_THAT(page.lines, ElementsAreArray(expected));
    EXPECT_THAT(page.icons,
                ElementsAre(PlacedReportIcon{ReportIcon::kBlue, 60, 246},
                            PlacedReportIcon{ReportIcon::kYellow, 60, 302}, PlacedReportIcon{ReportIcon::kRed, 60, 414},
                            PlacedReportIcon{ReportIcon::kYellow, 60, 470}));
}

TEST_F(ReportPages, OfAnNvmeDrive) {
    const ReportPage page = composeNvmeReport(facts());
    EXPECT_THAT(page.lines,
                ElementsAreArray(
                    headerLines() +
                    Lines{bodyLine(200, "Total Data Written to the Drive"),
                          bodyLine(216, "953 Gigabytes of data has been written to the drive"),
                          bodyLine(232, "Standard Manufacturer Thresholds are between 70,000 and 150,000 Gigabytes"),
                          bodyLine(256, "Available Spare Space"),
                          bodyLine(272, "Available Spare is at 97 percent. Failure Threshold is 10 percent"),
                          bodyLine(288, "This data indicates that your drive is within  manufacturer thresholds"),
                          bodyLine(312, "Tempeature Threshold"),
                          bodyLine(328, "Temperature Threshold for upper and lower manufacturer specifications"),
                          bodyLine(344, "Drives current temperature threshold is within norms"),
                          bodyLine(368, "Non-Volatile Memory Sub-System"),
                          bodyLine(384, "NVM Sub System Reliability may be degraded due to media or internal errors"),
                          bodyLine(400, "NVM Sub-System flag indicates that this device is not degraded."),
                          bodyLine(424, "Read Only Mode Set"),
                          bodyLine(440, "Drive may be set into a read-only state to prevent damage"),
                          bodyLine(456, "Your drive is currently in a normal state"),
                          bodyLine(480, "Volatile Memory Backup Device"),
                          bodyLine(496, "Volatile Memory Backup Systems current state of operation indicates that"),
                          bodyLine(512, "your drives VM Backup System is in a normal state (If Available)"),
                          testsTitle(542),
                          bodyLine(562, "Critical Test PASSED"),
                          bodyLine(582, "Short Test FAILED"),
                          bodyLine(602, "NIST Test not performed")}));
    EXPECT_THAT(page.icons, ElementsAre(PlacedReportIcon{ReportIcon::kGreen, 60, 246},
                                        PlacedReportIcon{ReportIcon::kGreen, 60, 302},
                                        PlacedReportIcon{ReportIcon::kGreen, 60, 358},
                                        PlacedReportIcon{ReportIcon::kGreen, 60, 414},
                                        PlacedReportIcon{ReportIcon::kGreen, 60, 526}))
        << "the fifth section has none";
}

TEST_F(ReportPages, OfASolidStateDrive) {
    testing::addBitLockerEntry(drive_, 'D', "111111-222222");
    const ReportPage page = composeSsdReport(facts());
    EXPECT_THAT(page.lines,
                ElementsAreArray(headerLines() + Lines{testsTitle(230), bodyLine(250, "Critical Test PASSED"),
                                                       bodyLine(270, "Short Test FAILED"),
                                                       bodyLine(290, "NIST Test not performed")}))
        << "no BitLocker lines either";
    EXPECT_THAT(page.icons, IsEmpty());
}

TEST_F(ReportPages, OfADriveWithoutMonitoringData) {
    testing::addBitLockerEntry(drive_, 'D', "111111-222222");
    const ReportPage page = composeNoDataReport(facts());
    EXPECT_THAT(page.lines,
                ElementsAreArray(headerLines() + Lines{bodyLine(250, "Interface does not have Monitoring data.")}));
    EXPECT_THAT(page.icons, IsEmpty());
}

TEST_F(ReportPages, TellTheKeysOfBitLockerVolumes) {
    testing::addBitLockerEntry(drive_, 'D', "111111-222222-333333-444444-555555-666666-777777-888888");
    testing::addBitLockerEntry(drive_, 'E', "");
    testing::addBitLockerEntry(drive_, 'F', "000000-000000-000000-000000-000000-000000-000000-000001");
    const Lines expected{
        bitLockerLine(652, "BITLOCKER VOL: D: Recovery Key: 111111-222222-333333-444444-555555-666666-777777-888888"),
        bitLockerLine(672, "BITLOCKER VOL: E: LOCKED"),
        bitLockerLine(692, "BITLOCKER VOL: F: Recovery Key: 000000-000000-000000-000000-000000-000000-000000-000001")};
    EXPECT_THAT(linesFrom(composeAtaReport(facts()), 603), ElementsAreArray(expected));
    EXPECT_THAT(linesFrom(composeNvmeReport(facts()), 603), ElementsAreArray(expected));
}

TEST_F(ReportPages, AVolumeThatIsNotEncryptedLeavesTheStartOfALine) {
    testing::addBitLockerEntry(drive_, '\0', "");
    testing::addBitLockerEntry(drive_, 'E', "");
    EXPECT_THAT(linesFrom(composeAtaReport(facts()), 603),
                ElementsAre(bitLockerLine(652, "BITLOCKER VOL: "), bitLockerLine(672, "BITLOCKER VOL: E: LOCKED")));
}

TEST_F(ReportPages, AVolumeThatIsNotEncryptedIsSaidToBeSoAndOneThatIsNotKnownToo) {
    for (std::size_t i = 0; i < 3; ++i) {
        testing::addBitLockerEntry(drive_, '\0', "");
    }
    drive_.bitLockerNotes[0] = {'F', true};
    drive_.bitLockerNotes[1] = {'G', false};
    EXPECT_THAT(linesFrom(composeNvmeReport(facts()), 603),
                ElementsAre(bitLockerLine(652, "BITLOCKER VOL: F: not encrypted"),
                            bitLockerLine(672, "BITLOCKER VOL: G: not known"), bitLockerLine(692, "BITLOCKER VOL: ")));
}

TEST_F(ReportPages, HaveAFreePartBelowTheirLines) {
    testing::addBitLockerEntry(drive_, 'D', "");
    ASSERT_FALSE(composeAtaReport(facts()).freeLines.empty());
    EXPECT_EQ(composeAtaReport(facts()).freeLines.front().yFromTop, 672 + 14);
    drive_.firmware.assign("1.0");
    EXPECT_EQ(composeSsdReport(facts()).freeLines.front().yFromTop, 310 + 14);
    EXPECT_EQ(composeNoDataReport(facts()).freeLines.front().yFromTop, 270 + 14);
}

TEST_F(ReportPages, OnlyAFlagOfOneMeansAKey) {
    testing::addBitLockerEntry(drive_, 'D', "111111");
    drive_.bitLockerEntries[0].hasKey = 2;
    EXPECT_THAT(linesFrom(composeAtaReport(facts()), 603), ElementsAre(bitLockerLine(652, "BITLOCKER VOL: D: LOCKED")));
}

TEST_F(ReportPages, HoldTenBitLockerLinesAndNoMore) {
    for (char letter = 'D'; letter < 'D' + 10; ++letter) {
        testing::addBitLockerEntry(drive_, letter, "");
    }
    const Lines ten = linesFrom(composeAtaReport(facts()), 603);
    ASSERT_EQ(ten.size(), 10U);
    EXPECT_EQ(ten.back(), bitLockerLine(832, "BITLOCKER VOL: M: LOCKED"));
    for (const std::int32_t count : {11, 1'000'000}) {
        drive_.bitLockerEntryCount = count;
        EXPECT_EQ(linesFrom(composeAtaReport(facts()), 603), ten) << count;
    }
    drive_.bitLockerEntryCount = -1;
    EXPECT_THAT(linesFrom(composeAtaReport(facts()), 603), IsEmpty());
}

TEST_F(ReportPages, TakeTextsAsTheyAre) {
    drive_.model.assign("%s%n 100%");
    drive_.serialNumber.assign(std::string(127, 'S'));
    company_.assign("M\xC3\xBCller & S\xC3\xB6hne", "", std::string(255, 'P'));
    const Lines lines = composeSsdReport(facts()).lines;
    EXPECT_EQ(lines[2].text, "Model: %s%n 100%");
    EXPECT_EQ(lines[3].text, "Serial Num: " + std::string(127, 'S'));
    EXPECT_EQ(lines[4].text, "M\xC3\xBCller & S\xC3\xB6hne");
    EXPECT_EQ(lines[5], headerLine(130, "")) << "an empty line keeps its place";
    EXPECT_EQ(lines[6].text, std::string(255, 'P'));
}

std::vector<std::string> readTestLines(const ReportPage& page) {
    std::vector<std::string> lines;
    for (const ReportLine& line : page.lines) {
        if (line.text.find(" Test ") != std::string::npos && line.text.find("Read Test") == std::string::npos &&
            line.text.find("Hard Drive") == std::string::npos) {
            lines.push_back(line.text);
        }
    }
    return lines;
}

TEST(ReadTestLines, OfADriveUnderTestSaysWhichTestsAreNotOver) {
    DriveRecord drive = testing::reportedDrive();
    const CompanyInfo company = testing::reportedCompany();
    drive.criticalTestResult = drive.shortTestResult = drive.nistTestResult = ReadTestResult::kPassed;
    drive.readTestsAtWork.shortTests = 2;
    const auto lines = [&] { return readTestLines(composeSsdReport({drive, company, {2026, 11, 22}, {}, {}, {}})); };
    EXPECT_EQ(lines(), (std::vector<std::string>{"Critical Test PASSED", "Short Test running", "NIST Test PASSED"}));
    drive.readTestsAtWork.shortTests = 0;
    drive.readTestsAtWork.criticalTests = 1;
    drive.readTestsAtWork.nistTests = 1;
    EXPECT_EQ(lines(), (std::vector<std::string>{"Critical Test running", "Short Test PASSED", "NIST Test running"}));
}

} // namespace
} // namespace torvane
