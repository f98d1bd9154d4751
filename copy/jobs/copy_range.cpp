#include "copy/jobs/copy_range.h"

#include <algorithm>
#include <numeric>

namespace torvane {

namespace {

std::uint64_t usableUnit(std::uint64_t sector, std::size_t blockSize) {
    return sector != 0 && blockSize % sector == 0 ? sector : 1;
}

std::uint64_t roundUp(std::uint64_t bytes, std::uint64_t unit) {
    return (bytes + unit - 1) / unit * unit;
}

} // namespace

CopyRange copyRange(std::uint64_t bytes, const CopySectors& sectors, std::size_t blockSize) {
    const std::uint64_t source = usableUnit(sectors.source, blockSize);
    const std::uint64_t destination = usableUnit(sectors.destination, blockSize);
    return {.bytes = bytes,
            .sourceEnd = roundUp(bytes, source),
            .destinationEnd = roundUp(bytes, destination),
            .orderedBytes = roundUp(bytes, std::lcm(source, destination)),
            .oddBytes = bytes % destination};
}

Block forDestination(const Block& block, const CopyRange& range) {
    // One that was read whole may be looked at by the reader meanwhile.
    if (block.outcome != TransferOutcome::kWhole) {
        std::ranges::fill(block.bytes.subspan(bytesUpTo(range.bytes, block.extent)), std::byte{0});
    }
    Block clipped = block;
    clipped.extent.length = bytesUpTo(range.destinationEnd, block.extent);
    clipped.bytes = block.bytes.first(clipped.extent.length);
    return clipped;
}

} // namespace torvane
