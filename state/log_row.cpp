#include "state/log_row.h"

#include "base/format.h"

namespace torvane {

LogRow makeLogRow(const char* category, const LocalMoment& moment, std::string message) {
    return {category, formatText("%02d/%02d/%04d", moment.month, moment.day, moment.year),
            formatText("%02d:%02d:%02d", moment.hour, moment.minute, moment.second), std::move(message)};
}

} // namespace torvane
