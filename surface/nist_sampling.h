#pragma once

#include <cstdint>
#include <functional>

namespace torvane {

// Which sectors the NIST test reads. Units: sectors of the drive.

/// The drive is cut into this many segments, and all but the last are sampled.
inline constexpr std::uint64_t kNistDivisions = 1001;
inline constexpr std::int32_t kNistSegments = 1000;

struct NistSegment {
    std::int64_t start;
    std::uint64_t sectors;
};

/// One of the two runs of a segment: a twentieth of it.
[[nodiscard]] inline std::uint64_t nistRunSectors(const NistSegment& segment) {
    return segment.sectors / 20;
}

struct TwoStarts {
    std::int64_t first;
    std::int64_t second;

    bool operator==(const TwoStarts&) const = default;
};

/// Gives numbers from 0 to 32767.
using RandomNumbers = std::function<int()>;

/// A fraction made of two numbers, the first for the low half: it lies between 0 and 0.49999.
[[nodiscard]] double randomFraction(const RandomNumbers& random);

/// Where the two runs of `runSectors` begin: in the first half of what the segment leaves free. They may overlap, but
/// the second does not begin exactly where the first ends.
[[nodiscard]] TwoStarts PickTwoStarts(const NistSegment& segment, std::uint64_t runSectors,
                                      const RandomNumbers& random);

} // namespace torvane
