#pragma once

#include "base/bytes.h"
#include "records/drive_record.h"

#include <cstddef>

namespace torvane {

/// NVMe Base Specification: SMART / Health Information log page (02h) and Identify Controller data structure.
inline constexpr std::size_t kNvmeHealthLogSize = 512;
inline constexpr std::size_t kNvmeIdentifySize = 4096;

/// Sets every field of `record.nvme` to -1, "not read".
void markNvmeHealthUnread(DriveRecord& record);

/// Copies the health log's fields into `record.nvme` and derives the written gigabytes and the used-up share of the
/// rated write endurance. Of 128-bit counters the low 64 bits are kept. Bytes missing from `log` count as zero.
void CopyHealthLog(DriveRecord& record, ByteView log);

/// Copies serial number (bytes 4-23) and model (bytes 24-63) of Identify Controller data into the record, blanks at
/// both ends trimmed.
void copyControllerIdentity(DriveRecord& record, ByteView identify);

} // namespace torvane
