#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace torvane {

/// Sectors of a volume that does not tell how large they are, and the least that is assumed of any: 4096 bytes, which
/// every smaller size divides.
inline constexpr std::size_t kUsualAlignment = 4096;

/// What an unbuffered transfer of a volume must be a multiple of, place, length and address (FILE_FLAG_NO_BUFFERING),
/// by the bytes of a sector that the volume tells.
[[nodiscard]] constexpr std::size_t unbufferedAlignment(std::uint32_t sectorTold) {
    return std::has_single_bit(sectorTold) && sectorTold > kUsualAlignment ? sectorTold : kUsualAlignment;
}

/// How many of the bytes, from their first on, may be moved unbuffered between `offset` and this memory.
[[nodiscard]] inline std::size_t wholeSectors(std::uint64_t offset, std::span<const std::byte> bytes,
                                              std::size_t alignment) {
    const auto address = reinterpret_cast<std::uintptr_t>(bytes.data());
    const bool aligned = offset % alignment == 0 && address % alignment == 0;
    return aligned ? bytes.size() / alignment * alignment : 0;
}

} // namespace torvane
