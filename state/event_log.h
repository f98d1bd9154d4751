#pragma once

#include "base/format.h"

namespace torvane {

/// Appends one row to the event log, in the day's file and in the main window's list: `category` ("STATUS", "ERROR",
/// "INVALID", "SUCCESS", "FAILURE" ...), the local date and time, and the text made from `format` and its arguments.
/// Any thread may call it; before the main window exists, and after its end, the file alone gets the row. Where the
/// file cannot be written, the list says so, once. A thread may have its rows held back (`LogRowsHeld`). Secrets are
/// never logged.
void LogEvent(const char* category, const char* format, ...) TORVANE_PRINTF_LIKE(2, 3);

/// The category of rows about what a job does to a drive, which have to stand somewhere, however much else the day has
/// told.
inline constexpr const char* kJobCategory = "JOB";

/// One row for the day's file alone: what a job that leaves the window's list as it is began with, and how it ended
/// (`kJobCategory`). Any thread may call it.
void LogToFile(const char* category, const char* format, ...) TORVANE_PRINTF_LIKE(2, 3);

} // namespace torvane
