#include "base/local_moment.h"

#include "base/format.h"

#include <cstdlib>

namespace torvane {

std::string momentText(const LocalMoment& moment) {
    constexpr int kMinutes = 60;
    const int ahead = std::abs(moment.utcOffset);
    return formatText("%04d-%02d-%02d %02d:%02d:%02d %c%02d:%02d", moment.year, moment.month, moment.day, moment.hour,
                      moment.minute, moment.second, moment.utcOffset < 0 ? '-' : '+', ahead / kMinutes,
                      ahead % kMinutes);
}

} // namespace torvane

#ifdef _WIN32

#include <windows.h>

#include <cstdint>

namespace torvane {

namespace {

std::int64_t minutesOf(const SYSTEMTIME& time) {
    constexpr std::int64_t kTicksPerMinute = std::int64_t{60} * 10'000'000; // of 100 ns
    FILETIME ticks{};
    SystemTimeToFileTime(&time, &ticks);
    return ((std::int64_t{ticks.dwHighDateTime} << 32) | ticks.dwLowDateTime) / kTicksPerMinute;
}

} // namespace

// Not the C library, which takes the time zone from the environment, and but once. The offset belongs to the very
// moment that is told, also in the hour that a change of daylight saving time repeats.
LocalMoment localNow() {
    SYSTEMTIME utc{};
    GetSystemTime(&utc);
    SYSTEMTIME now{};
    if (SystemTimeToTzSpecificLocalTime(nullptr, &utc, &now) == FALSE) {
        now = utc;
    }
    return {now.wYear,
            now.wMonth,
            now.wDay,
            now.wHour,
            now.wMinute,
            now.wSecond,
            static_cast<int>(minutesOf(now) - minutesOf(utc))};
}

} // namespace torvane

#else

#include <ctime>

namespace torvane {

LocalMoment localNow() {
    const std::time_t clock = std::time(nullptr);
    std::tm now{};
    localtime_r(&clock, &now);
    constexpr int kSecondsPerMinute = 60;
    return {now.tm_year + 1900,
            now.tm_mon + 1,
            now.tm_mday,
            now.tm_hour,
            now.tm_min,
            now.tm_sec,
            static_cast<int>(now.tm_gmtoff / kSecondsPerMinute)};
}

} // namespace torvane

#endif
