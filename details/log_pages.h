#pragma once

#include "details/detail_page.h"
#include "details/tool_report.h"

namespace torvane {

struct DriveRecord;

// The tables of a drive's report. One without rows has a sentence in their place, which says why.

[[nodiscard]] DetailPage attributePage(const DriveRecord& drive, const ToolReport& report);
[[nodiscard]] DetailPage selfTestPage(const ToolReport& report);
[[nodiscard]] DetailPage errorLogPage(const ToolReport& report);
[[nodiscard]] DetailPage statisticPage(const DriveRecord& drive, const ToolReport& report);

/// The tool's own text as it stands.
[[nodiscard]] DetailPage reportPage(const DriveRecord& drive);

} // namespace torvane
