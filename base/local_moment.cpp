#include "base/local_moment.h"

#include <ctime>

namespace torvane {

namespace {

/// The calling thread's own copy: the C library keeps one for all.
std::tm localCalendar(std::time_t now) {
    std::tm calendar{};
#ifdef _WIN32
    localtime_s(&calendar, &now);
#else
    localtime_r(&now, &calendar);
#endif
    return calendar;
}

} // namespace

LocalMoment localNow() {
    const std::tm now = localCalendar(std::time(nullptr));
    return {now.tm_year + 1900, now.tm_mon + 1, now.tm_mday, now.tm_hour, now.tm_min, now.tm_sec};
}

} // namespace torvane
