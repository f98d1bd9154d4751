#pragma once

namespace torvane {

/// A moment of the local calendar.
struct LocalMoment {
    int year = 0;
    int month = 0; ///< 1 to 12
    int day = 0;   ///< 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;
};

/// By the system's clock.
[[nodiscard]] LocalMoment localNow();

} // namespace torvane
