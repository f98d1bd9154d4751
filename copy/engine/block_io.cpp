#include "copy/engine/block_io.h"

#include "base/format.h"
#include "copy/engine/block_layout.h"

#include <cinttypes>

namespace torvane {

std::string countBadRead(DriveRecord& drive, std::uint64_t offset) {
    ++drive.badReadCount;
    return formatText("BAD READ BLOCK AT SECTOR: [%" PRId64 "]", sectorOfOffset(offset, drive.bytesPerSector));
}

void settleRead(DriveRecord& source, std::uint64_t offset, std::span<std::byte> block, TransferOutcome outcome,
                const ErrorLog& log) {
    if (hasFailed(outcome)) {
        log(countBadRead(source, offset));
        fillWithUnreadableMarker(block);
    }
}

TransferOutcome ReadBlock(DriveIo& io, DriveRecord& source, std::span<std::byte> buffer, std::uint64_t offset,
                          const ErrorLog& log) {
    const TransferOutcome outcome = reachAndRead(io, source, offset, buffer);
    settleRead(source, offset, buffer, outcome, log);
    return outcome;
}

TransferOutcome WriteBlock(DriveIo& io, DriveRecord& destination, std::span<const std::byte> buffer,
                           std::uint64_t offset) {
    const TransferOutcome outcome = reachAndWrite(io, destination, offset, buffer);
    if (hasFailed(outcome)) {
        ++destination.writeErrorCount;
    }
    return outcome;
}

} // namespace torvane
