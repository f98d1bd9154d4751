#pragma once

#include <array>
#include <cstdint>
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

} // namespace torvane
