#pragma once

#include "base/format.h"

#include <array>
#include <cinttypes>
#include <cstdint>
#include <string>
#include <string_view>

namespace torvane {

/// A unit in which sizes are told: powers of 1024 bytes.
struct SizeUnit {
    std::string_view name;
    std::uint64_t bytes;

    bool operator==(const SizeUnit&) const = default;
};

inline constexpr std::array<SizeUnit, 4> kSizeUnits{
    {{"TB", 1ULL << 40}, {"GB", 1ULL << 30}, {"MB", 1ULL << 20}, {"KB", 1ULL << 10}}};

/// The largest unit that is not larger than so many bytes; single bytes for less than any.
[[nodiscard]] constexpr SizeUnit sizeUnitOf(std::uint64_t bytes) {
    for (const SizeUnit& unit : kSizeUnits) {
        if (bytes >= unit.bytes) {
            return unit;
        }
    }
    return {.name = bytes == 1 ? "byte" : "bytes", .bytes = 1};
}

/// "512 MB", "1.5 GB", "100 bytes": in the largest unit that is not larger than the size itself.
[[nodiscard]] inline std::string sizeInWords(std::uint64_t bytes) {
    const SizeUnit unit = sizeUnitOf(bytes);
    const bool whole = bytes % unit.bytes == 0;
    return (whole ? formatText("%" PRIu64 " ", bytes / unit.bytes)
                  : formatText("%.1f ", static_cast<double>(bytes) / static_cast<double>(unit.bytes)))
        .append(unit.name);
}

} // namespace torvane
