#pragma once

#include "base/local_moment.h"

#include <span>
#include <string>
#include <vector>

namespace torvane {

/// A row of a list: the whole texts of its cells.
using RowTexts = std::vector<std::string>;

/// The rows as text that other programs take for a table: a tab between cells, CR LF between rows. Control characters
/// within a cell become blanks, so that one row stays one line.
[[nodiscard]] std::string rowsAsText(std::span<const RowTexts> rows);

/// The log's rows, of category, date, time and message, as the file of the day has them (`logFileLine`).
[[nodiscard]] std::string logAsText(std::span<const RowTexts> rows);

/// The name that is offered for the saved log: "Torvane log 2026-11-22.txt".
[[nodiscard]] std::string savedLogName(const LocalMoment& moment);

} // namespace torvane
