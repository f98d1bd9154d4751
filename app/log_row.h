#pragma once

#include "app/main_view.h"

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
};

/// The event log's row for a message of the given moment.
[[nodiscard]] LogRow makeLogRow(const char* category, const LocalMoment& moment, std::string message);

} // namespace torvane
