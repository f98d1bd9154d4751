#include "surface/nist_sampling.h"

namespace torvane {

namespace {

constexpr double kFractionDivisor = 4294967295.0;
constexpr std::uint32_t kGreatestNumber = 32767;
constexpr double kGreatestFraction = (kGreatestNumber | (kGreatestNumber << 16)) / kFractionDivisor;

std::int64_t placeIn(std::int64_t span, double fraction) {
    return static_cast<std::int64_t>(static_cast<double>(span) * fraction);
}

} // namespace

double randomFraction(const RandomNumbers& random) {
    const auto low = static_cast<std::uint32_t>(random());
    const auto high = static_cast<std::uint32_t>(random());
    // The top bit of neither half is ever set: the fraction stays below one half. Kept: earlier results compare.
    return static_cast<std::int32_t>(low | (high << 16)) / kFractionDivisor;
}

TwoStarts PickTwoStarts(const NistSegment& segment, std::uint64_t runSectors, const RandomNumbers& random) {
    const std::int64_t span = static_cast<std::int64_t>(segment.sectors) - static_cast<std::int64_t>(runSectors);
    const auto start = [&] { return segment.start + placeIn(span, randomFraction(random)); };
    TwoStarts starts{};
    starts.first = start();
    starts.second = start();
    // A span of one or two sectors has one place only, and no further draw would find another.
    const bool hasOtherPlaces = placeIn(span, kGreatestFraction) > 0;
    while (hasOtherPlaces && starts.second == starts.first + static_cast<std::int64_t>(runSectors)) {
        starts.second = start();
    }
    return starts;
}

} // namespace torvane
