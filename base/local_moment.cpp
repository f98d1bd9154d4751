#include "base/local_moment.h"

#ifdef _WIN32

#include <windows.h>

namespace torvane {

// Not the C library, which takes the time zone from the environment, and but once.
LocalMoment localNow() {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
}

} // namespace torvane

#else

#include <ctime>

namespace torvane {

LocalMoment localNow() {
    const std::time_t clock = std::time(nullptr);
    std::tm now{};
    localtime_r(&clock, &now);
    return {now.tm_year + 1900, now.tm_mon + 1, now.tm_mday, now.tm_hour, now.tm_min, now.tm_sec};
}

} // namespace torvane

#endif
