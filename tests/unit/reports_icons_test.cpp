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
    EXPECT_EQ(powerOnHoursIcon(0), ReportIcon::kGreen);
    EXPECT_EQ(powerOnHoursIcon(26'279), ReportIcon::kGreen);
    EXPECT_EQ(powerOnHoursIcon(26'280), ReportIcon::kBlue);
    EXPECT_EQ(powerOnHoursIcon(43'799), ReportIcon::kBlue);
    EXPECT_EQ(powerOnHoursIcon(43'800), ReportIcon::kYellow);
    EXPECT_EQ(powerOnHoursIcon(kMost), ReportIcon::kYellow) << "never red";
    EXPECT_EQ(powerOnHoursIcon(kLeast), ReportIcon::kGreen);
}

TEST(ReportIcons, ReallocatedSectorsTurnAtOneAndFifty) {
    EXPECT_EQ(reallocatedSectorsIcon(0), ReportIcon::kGreen);
    EXPECT_EQ(reallocatedSectorsIcon(1), ReportIcon::kYellow);
    EXPECT_EQ(reallocatedSectorsIcon(49), ReportIcon::kYellow);
    EXPECT_EQ(reallocatedSectorsIcon(50), ReportIcon::kRed);
    EXPECT_EQ(reallocatedSectorsIcon(kMost), ReportIcon::kRed);
    EXPECT_EQ(reallocatedSectorsIcon(-2), ReportIcon::kRed);
}

TEST(ReportIcons, ErrorCountsTurnAtOneFiveAndTen) {
    EXPECT_EQ(errorCountIcon(0), ReportIcon::kGreen);
    EXPECT_EQ(errorCountIcon(1), ReportIcon::kBlue);
    EXPECT_EQ(errorCountIcon(4), ReportIcon::kBlue);
    EXPECT_EQ(errorCountIcon(5), ReportIcon::kYellow);
    EXPECT_EQ(errorCountIcon(9), ReportIcon::kYellow);
    EXPECT_EQ(errorCountIcon(10), ReportIcon::kRed);
    EXPECT_EQ(errorCountIcon(kMost), ReportIcon::kRed);
    EXPECT_EQ(errorCountIcon(-2), ReportIcon::kRed);
    EXPECT_EQ(errorCountIcon(kLeast), ReportIcon::kRed);
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
