#include "reports/report_icons.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace torvane {
namespace {

constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

TEST(ReportIcons, AreFilesBesideTheProgram) {
    EXPECT_STREQ(reportIconFile(ReportIcon::kGreen), "report-green-32.png");
    EXPECT_STREQ(reportIconFile(ReportIcon::kBlue), "report-blue-32.png");
    EXPECT_STREQ(reportIconFile(ReportIcon::kYellow), "report-yellow-32.png");
    EXPECT_STREQ(reportIconFile(ReportIcon::kRed), "report-red-32.png");
}

TEST(ReportIcons, PowerOnHoursTurnAtThreeAndFiveYears) {
    EXPECT_EQ(counterIcon(Counter::kPowerOnHours, 0), ReportIcon::kGreen);
    EXPECT_EQ(counterIcon(Counter::kPowerOnHours, 26'279), ReportIcon::kGreen);
    EXPECT_EQ(counterIcon(Counter::kPowerOnHours, 26'280), ReportIcon::kBlue);
    EXPECT_EQ(counterIcon(Counter::kPowerOnHours, 43'799), ReportIcon::kBlue);
    EXPECT_EQ(counterIcon(Counter::kPowerOnHours, 43'800), ReportIcon::kYellow);
    EXPECT_EQ(counterIcon(Counter::kPowerOnHours, kMost), ReportIcon::kYellow) << "never red";
    EXPECT_EQ(counterIcon(Counter::kPowerOnHours, kLeast), ReportIcon::kGreen);
}

TEST(ReportIcons, ReallocatedSectorsTurnAtOneAndFifty) {
    EXPECT_EQ(counterIcon(Counter::kReallocatedSectors, 0), ReportIcon::kGreen);
    EXPECT_EQ(counterIcon(Counter::kReallocatedSectors, 1), ReportIcon::kYellow);
    EXPECT_EQ(counterIcon(Counter::kReallocatedSectors, 49), ReportIcon::kYellow);
    EXPECT_EQ(counterIcon(Counter::kReallocatedSectors, 50), ReportIcon::kRed);
    EXPECT_EQ(counterIcon(Counter::kReallocatedSectors, kMost), ReportIcon::kRed);
    EXPECT_EQ(counterIcon(Counter::kReallocatedSectors, -2), ReportIcon::kRed);
}

TEST(ReportIcons, ErrorCountsTurnAtOneFiveAndTen) {
    for (const Counter counter : {Counter::kReallocationEvents, Counter::kPendingSectors,
                                  Counter::kOfflineUncorrectable, Counter::kReportedUncorrectable}) {
        EXPECT_EQ(counterIcon(counter, 0), ReportIcon::kGreen);
        EXPECT_EQ(counterIcon(counter, 1), ReportIcon::kBlue);
        EXPECT_EQ(counterIcon(counter, 4), ReportIcon::kBlue);
        EXPECT_EQ(counterIcon(counter, 5), ReportIcon::kYellow);
        EXPECT_EQ(counterIcon(counter, 9), ReportIcon::kYellow);
        EXPECT_EQ(counterIcon(counter, 10), ReportIcon::kRed);
        EXPECT_EQ(counterIcon(counter, kMost), ReportIcon::kRed);
        EXPECT_EQ(counterIcon(counter, -2), ReportIcon::kRed);
        EXPECT_EQ(counterIcon(counter, kLeast), ReportIcon::kRed);
    }
}

TEST(ReportIcons, DataWrittenTurnsAtSeventyAndAHundredAndFiftyThousandGigabytes) {
    EXPECT_EQ(dataWrittenIcon(0), ReportIcon::kGreen);
    EXPECT_EQ(dataWrittenIcon(69'999), ReportIcon::kGreen);
    EXPECT_EQ(dataWrittenIcon(70'000), ReportIcon::kBlue);
    EXPECT_EQ(dataWrittenIcon(149'999), ReportIcon::kBlue);
    EXPECT_EQ(dataWrittenIcon(150'000), ReportIcon::kYellow);
    EXPECT_EQ(dataWrittenIcon(17'179'869'183), ReportIcon::kYellow) << "never red";
}

TEST(ReportIcons, SpareMustBeAboveItsThreshold) {
    EXPECT_EQ(availableSpareIcon(11, 10), ReportIcon::kGreen);
    EXPECT_EQ(availableSpareIcon(10, 10), ReportIcon::kYellow);
    EXPECT_EQ(availableSpareIcon(9, 10), ReportIcon::kYellow);
    EXPECT_EQ(availableSpareIcon(0, 0), ReportIcon::kYellow);
}

TEST(ReportIcons, WarningFlagsAreYellow) {
    EXPECT_EQ(warningFlagIcon(false), ReportIcon::kGreen);
    EXPECT_EQ(warningFlagIcon(true), ReportIcon::kYellow);
}

} // namespace
} // namespace torvane
