#pragma once

#include "discovery/drive_record.h"

namespace torvane {

/// Sets every NVMe value of the record to "not read".
void markNvmeNotRead(NvmeHealth& nvme);

/// Reads the record's monitoring data by the road that fits its access path; when no NVMe road answers, runs the pass
/// over a solid-state device's attributes. Returns non-zero: the road's result, or that of the final text formatting.
int dispatchMonitoring(DriveRecord& record);

} // namespace torvane
