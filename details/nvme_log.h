#pragma once

#include "base/bytes.h"
#include "details/tool_report.h"

#include <vector>

namespace torvane {

/// All that a SMART / Health Information log says (NVM Express Base Specification, log page 02h), by the names that the
/// tool gives its lines. Nothing for a log that is shorter than 512 bytes.
[[nodiscard]] std::vector<ReportField> nvmeLogFields(ByteView log);

} // namespace torvane
