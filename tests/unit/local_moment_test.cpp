#include "base/local_moment.h"

#include <gtest/gtest.h>

#include <ctime>

namespace torvane {
namespace {

TEST(LocalNow, IsTheCalendarsMomentOfTheSystemsClock) {
    const std::time_t before = std::time(nullptr);
    const LocalMoment now = localNow();
    const std::time_t after = std::time(nullptr);
    std::tm calendar{};
    calendar.tm_year = now.year - 1900;
    calendar.tm_mon = now.month - 1;
    calendar.tm_mday = now.day;
    calendar.tm_hour = now.hour;
    calendar.tm_min = now.minute;
    calendar.tm_sec = now.second;
    calendar.tm_isdst = -1;
    const std::time_t told = std::mktime(&calendar);
    EXPECT_GE(told, before);
    EXPECT_LE(told, after);
}

TEST(LocalNow, TellsHowFarItIsAheadOfUtc) {
    const std::time_t clock = std::time(nullptr);
    const LocalMoment now = localNow();
    std::tm calendar{};
    calendar.tm_year = now.year - 1900;
    calendar.tm_mon = now.month - 1;
    calendar.tm_mday = now.day;
    calendar.tm_hour = now.hour;
    calendar.tm_min = now.minute - now.utcOffset;
    calendar.tm_sec = now.second;
    calendar.tm_isdst = 0;
#ifdef _WIN32
    const std::time_t told = _mkgmtime(&calendar);
#else
    const std::time_t told = timegm(&calendar);
#endif
    EXPECT_GE(told, clock);
    EXPECT_LE(told, clock + 60);
}

TEST(MomentText, HasTheTimeZone) {
    LocalMoment moment{2026, 11, 2, 20, 5, 3, 60};
    EXPECT_EQ(momentText(moment), "2026-11-02 20:05:03 +01:00");
    moment.utcOffset = 0;
    EXPECT_EQ(momentText(moment), "2026-11-02 20:05:03 +00:00");
    moment.utcOffset = -210;
    EXPECT_EQ(momentText(moment), "2026-11-02 20:05:03 -03:30");
}

} // namespace
} // namespace torvane
