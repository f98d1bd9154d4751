#pragma once

#include <string>

namespace torvane {

/// A moment of the local calendar.
struct LocalMoment {
    int year = 0;
    int month = 0; ///< 1 to 12
    int day = 0;   ///< 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;
    int utcOffset = 0; ///< minutes by which the local clock is ahead of UTC
};

/// "2026-11-22 20:15:03 +01:00"
[[nodiscard]] std::string momentText(const LocalMoment& moment);

/// By the system's clock.
[[nodiscard]] LocalMoment localNow();

} // namespace torvane
