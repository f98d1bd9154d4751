#pragma once

#include "base/local_moment.h"

#include <string>

namespace torvane {

struct LogRow;

/// The file of the moment's day: "Torvane 2026-11-22.log".
[[nodiscard]] std::string logFileName(const LocalMoment& moment);

/// The row as the file's line: category, date, time and message with a tab between each, ended by CR LF. Control
/// characters within them become blanks, so that one row is one line of four columns; a message of more than 4096
/// bytes is cut; and what looks like a BitLocker recovery password (eight groups of six digits) is not written.
[[nodiscard]] std::string logFileLine(const LogRow& row);

} // namespace torvane
