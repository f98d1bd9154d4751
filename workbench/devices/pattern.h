#pragma once

#include "workbench/description/drive_description.h"

#include <cstdint>
#include <span>

namespace torvane::bench {

/// SplitMix64's output function.
[[nodiscard]] constexpr std::uint64_t splitMix(std::uint64_t z) {
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
}

/// Fills `out` with the content of a pattern-backed drive from byte position `offset` on.
/// `backing.kind` is one of the patterns; a file-backed drive gives zero bytes.
void fillPattern(const Backing& backing, std::uint64_t offset, std::span<std::uint8_t> out);

} // namespace torvane::bench
