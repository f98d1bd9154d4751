#pragma once

#include "base/bytes.h"
#include "discovery/nvme_command.h"
#include "records/drive_record.h"

namespace torvane {

/// Sets every field of `record.nvme` to -1, "not read", and keeps no log.
void markNvmeHealthUnread(DriveRecord& record);

/// Copies the health log's fields into `record.nvme` and derives the written gigabytes and the used-up share of the
/// rated write endurance. Of 128-bit counters the low 64 bits are kept. Bytes missing from `log` count as zero. The log
/// itself is kept, too, for whoever wants to know more of it.
void CopyHealthLog(DriveRecord& record, ByteView log);

/// Copies serial number and model of Identify Controller data into the record's own, and keeps both as printed.
void copyControllerIdentity(DriveRecord& record, ByteView identify);

} // namespace torvane
