#pragma once

#include "copy/engine/block_pipeline.h"

#include <cstddef>
#include <cstdint>

namespace torvane {

/// The bytes [0, bytes) of a source on their way onto a drive. Drives move whole sectors alone, and the two may differ
/// in their sectors: where the range ends inside one, it is read and written up to that sector's end.
struct CopyRange {
    std::uint64_t bytes = 0;
    std::uint64_t sourceEnd = 0;      ///< as far as the source is read
    std::uint64_t destinationEnd = 0; ///< as far as the destination is written; what lies behind `bytes` gets zeros
    std::uint64_t orderedBytes = 0;   ///< what is cut into blocks: sectors of both, so that each block begins on one
    std::uint64_t oddBytes = 0;       ///< in the destination's last sector; 0 when it is filled

    bool operator==(const CopyRange&) const = default;
};

/// Sector sizes in bytes; 1 for a file. A sector size that does not divide the block size is not heeded.
struct CopySectors {
    std::uint64_t source = 1;
    std::uint64_t destination = 1;
};

[[nodiscard]] CopyRange copyRange(std::uint64_t bytes, const CopySectors& sectors, std::size_t blockSize);

/// The block as the destination gets it: zeros behind the range, and not a byte behind its last sector. A block that
/// was read whole holds its zeros already.
[[nodiscard]] Block forDestination(const Block& block, const CopyRange& range);

} // namespace torvane
