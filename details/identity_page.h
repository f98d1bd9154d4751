#pragma once

#include "details/detail_page.h"
#include "details/drive_pages.h"
#include "details/tool_report.h"

#include <string_view>

namespace torvane {

/// Who the drive is, what it holds, and what keeps it from being read or written.
[[nodiscard]] DetailPage identityPage(const DetailSubject& subject, const ToolReport& report);

/// What the state of a drive's ATA security means for a copy ("ENABLED, PW level HIGH, not locked, not frozen"; ATA
/// Command Set, security states). Empty for a state that it does not know.
[[nodiscard]] std::string_view securityMeaning(std::string_view state);

} // namespace torvane
