#pragma once

#include "base/local_moment.h"

#include <optional>
#include <string>

namespace torvane {

struct LogRow;

/// Where the rows of the event log are kept beyond the window's list.
class EventLogFile {
  public:
    virtual ~EventLogFile() = default;

    /// Appends the row, which is of the moment `when` (local); when this returns it outlives the program, and one of a
    /// job (`kJobCategory`), or with no other within the second before it, the system, too. Gives what the user has to
    /// be told, in one line, the first time that a row could not be kept; nothing otherwise. Any thread may call.
    [[nodiscard]] virtual std::optional<std::string> append(const LocalMoment& when, const LogRow& row) = 0;
};

} // namespace torvane
