#include "base/local_moment.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdlib>
#include <ctime>

namespace torvane {
namespace {

/// Seconds since the day began.
int secondsOf(int hour, int minute, int second) {
    return (hour * 60 + minute) * 60 + second;
}

TEST(LocalNow, IsTheSystemsLocalTimeWhateverTheEnvironmentSays) {
    ASSERT_EQ(_putenv("TZ=ABC-11"), 0);
    _tzset();
    SYSTEMTIME before{};
    GetLocalTime(&before);
    const LocalMoment now = localNow();
    ASSERT_EQ(_putenv("TZ="), 0);
    _tzset();
    constexpr int kDay = 86400;
    const int late =
        secondsOf(now.hour, now.minute, now.second) - secondsOf(before.wHour, before.wMinute, before.wSecond);
    EXPECT_LE((late + kDay) % kDay, 60) << "the zone of the environment is eleven hours away";
}

} // namespace
} // namespace torvane
