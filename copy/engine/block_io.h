#pragma once

#include "base/format.h"
#include "copy/engine/copy_system.h"
#include "records/drive_record.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace torvane {

// Transfers between memory and the device or file that a record has open. Offsets are bytes from its start; a span is
// shorter than 2 GiB. There is no retry and no smaller read: a block that cannot be moved whole has failed whole.

/// Reads without a trace: neither count nor log row nor marker.
[[nodiscard]] FetchOutcome fetchBlock(const DriveRecord& source, std::span<std::byte> buffer, std::uint64_t offset);

/// Fills the whole buffer from `offset` and returns true. After a failed or short read it adds 1 to the source's
/// bad-read count, writes one "ERROR" log row with the block's first sector, fills the buffer with the unreadable
/// marker and returns false. After a failed seek it returns false and does nothing else: the buffer keeps what it held.
bool ReadBlock(DriveRecord& source, std::span<std::byte> buffer, std::uint64_t offset);

/// Writes the whole buffer at `offset` and returns true. After a failed or short write it adds 1 to the destination's
/// write-error count and returns false; after a failed seek it returns false and counts nothing.
bool WriteBlock(DriveRecord& destination, std::span<const std::byte> buffer, std::uint64_t offset);

/// Makes the calling thread's last error and the caller's text into words, and keeps neither: write errors show in the
/// count alone. Always 1.
int ReportWriteError(const char* format, ...) TORVANE_PRINTF_LIKE(1, 2);

} // namespace torvane
