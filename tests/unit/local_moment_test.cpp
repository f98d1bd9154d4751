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

} // namespace
} // namespace torvane
