#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace torvane {

enum class ComparisonEnd : std::uint8_t {
    kWhole,   ///< every block was dealt with
    kStopped, ///< somebody has asked the job to stop
    kNotMade, ///< no memory, a drive has gone, or an image could not be read
};

/// What a comparison has found. In blocks of the copy.
struct Comparison {
    ComparisonEnd end = ComparisonEnd::kNotMade;
    std::uint64_t compared = 0;
    std::uint64_t differing = 0;                                 ///< of those
    std::uint64_t unreadable = 0;                                ///< source or destination could not be read again
    std::uint64_t lost = 0;                                      ///< left out
    std::optional<std::uint64_t> firstDifference = std::nullopt; ///< the lowest place that differs, in bytes
};

/// The destination is known to hold what the source holds, wherever that could be read for the copy.
[[nodiscard]] bool isEqual(const Comparison& comparison);

/// A comparison was made, or tried, and the copy is not known to be right.
[[nodiscard]] bool isRefuted(const std::optional<Comparison>& comparison);

/// "3 blocks differ, the first at sector 4711, 1 block could not be read again"; "verified" when all is equal. Both may
/// be followed by ", 2 unreadable blocks left out".
[[nodiscard]] std::string comparisonInWords(const Comparison& comparison, std::uint64_t sectorSize);

} // namespace torvane
