#pragma once

namespace torvane {

struct DriveRecord;

/// Marks the record's NVMe values unread, then reads its monitoring data by the transport that fits its access path;
/// when no NVMe transport answers, runs the pass over a solid-state device's attributes. ATA attributes are not asked
/// for here: they stand in the report that was parsed before. Returns 1: the transport's result, or that of the final
/// text formatting.
int dispatchMonitoring(DriveRecord& record);

} // namespace torvane
