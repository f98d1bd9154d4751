#pragma once

#include "base/transfer_outcome.h"
#include "records/drive_record.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace torvane {

/// Transfers between memory and the device or file that a record has open: copies, read tests and the hex viewer go
/// through here. Offsets are bytes from the start; a span is shorter than 2 GiB. Nothing is counted, logged or marked,
/// and nothing is tried again. Several threads may use one drive.
class DriveIo {
  public:
    virtual ~DriveIo() = default;

    /// Whether the drive can be positioned there.
    [[nodiscard]] virtual bool canReach(const DriveRecord& drive, std::uint64_t offset) = 0;

    /// Moves the whole span; whether the place can be reached is not asked (never `kNotReached`).
    [[nodiscard]] virtual TransferOutcome read(const DriveRecord& drive, std::uint64_t offset,
                                               std::span<std::byte> bytes) = 0;
    [[nodiscard]] virtual TransferOutcome write(const DriveRecord& drive, std::uint64_t offset,
                                                std::span<const std::byte> bytes) = 0;

    /// Brings what was written onto the medium, out of every cache on the way: whole, failed or gone. Whole, too, for a
    /// drive that does not know the request.
    [[nodiscard]] virtual TransferOutcome flush(const DriveRecord& drive) = 0;
};

/// The same, once the place can be reached.
[[nodiscard]] inline TransferOutcome reachAndRead(DriveIo& io, const DriveRecord& drive, std::uint64_t offset,
                                                  std::span<std::byte> bytes) {
    return io.canReach(drive, offset) ? io.read(drive, offset, bytes) : TransferOutcome::kNotReached;
}
[[nodiscard]] inline TransferOutcome reachAndWrite(DriveIo& io, const DriveRecord& drive, std::uint64_t offset,
                                                   std::span<const std::byte> bytes) {
    return io.canReach(drive, offset) ? io.write(drive, offset, bytes) : TransferOutcome::kNotReached;
}

} // namespace torvane
