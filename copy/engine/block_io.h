#pragma once

#include "base/transfer_outcome.h"
#include "discovery/drive_io.h"
#include "records/drive_record.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>

namespace torvane {

// Blocks of a drive, and what a block that could not be moved calls for. Offsets are bytes from the drive's start; a
// span is shorter than 2 GiB. There is no retry and no smaller read: a block that cannot be moved whole has failed
// whole.

/// Where the rows about unreadable blocks go: the event log, as "ERROR".
using ErrorLog = std::function<void(const std::string& text)>;

/// Adds the loss of a block to the drive's bad-read count. Returns the text of its log row.
[[nodiscard]] std::string countBadRead(DriveRecord& drive, std::uint64_t offset);

/// Does what a block that could not be read whole calls for: counts it, logs its first sector and fills it with the
/// unreadable marker. Where the place could not be reached there is nothing to do: the block keeps what it held.
void settleRead(DriveRecord& source, std::uint64_t offset, std::span<std::byte> block, TransferOutcome outcome,
                const ErrorLog& log);

/// Fills the whole buffer from `offset`, and settles what could not be read.
TransferOutcome ReadBlock(DriveIo& io, DriveRecord& source, std::span<std::byte> buffer, std::uint64_t offset,
                          const ErrorLog& log);

/// Writes the whole buffer at `offset`. A failed or short write adds 1 to the destination's write-error count; where
/// the place could not be reached nothing is counted.
TransferOutcome WriteBlock(DriveIo& io, DriveRecord& destination, std::span<const std::byte> buffer,
                           std::uint64_t offset);

} // namespace torvane
