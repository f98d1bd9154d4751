#include "state/log_row.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

TEST(LogRowTest, DateIsMonthDayYearAndTimeHas24Hours) {
    const LogRow row = makeLogRow(
        "STATUS", {.year = 2022, .month = 6, .day = 20, .hour = 17, .minute = 40, .second = 5}, "Beginning Drive Scan");
    EXPECT_EQ(row.category, "STATUS");
    EXPECT_EQ(row.date, "06/20/2022");
    EXPECT_EQ(row.time, "17:40:05");
    EXPECT_EQ(row.message, "Beginning Drive Scan");
}

TEST(LogRowTest, PadsWithZeros) {
    const LogRow row =
        makeLogRow("ERROR", {.year = 987, .month = 1, .day = 2, .hour = 0, .minute = 0, .second = 0}, "");
    EXPECT_EQ(row.date, "01/02/0987");
    EXPECT_EQ(row.time, "00:00:00");
    EXPECT_EQ(row.message, "");
}

TEST(LogRowTest, MessageIsNoFormat) {
    EXPECT_EQ(makeLogRow("ERROR", {}, "100%s %n").message, "100%s %n");
}

} // namespace
} // namespace torvane
