#pragma once

#include "app/main_view.h"
#include "base/local_moment.h"

#include <string>

namespace torvane {

/// The event log's row for a message of the given moment.
[[nodiscard]] LogRow makeLogRow(const char* category, const LocalMoment& moment, std::string message);

} // namespace torvane
