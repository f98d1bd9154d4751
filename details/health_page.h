#pragma once

#include "details/detail_page.h"
#include "details/tool_report.h"

namespace torvane {

struct DriveRecord;

/// The drive's own verdict, its main counters in numbers, the NVMe health log, what a SCSI drive counts, temperatures,
/// and, where all that is missing, why.
[[nodiscard]] DetailPage healthPage(const DriveRecord& drive, const ToolReport& report);

} // namespace torvane
