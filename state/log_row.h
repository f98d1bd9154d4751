#pragma once

#include "base/local_moment.h"
#include "state/main_view.h"

#include <string>

namespace torvane {

/// The event log's row for a message of the given moment.
[[nodiscard]] LogRow makeLogRow(const char* category, const LocalMoment& moment, std::string message);

} // namespace torvane
