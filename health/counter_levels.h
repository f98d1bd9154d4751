#pragma once

#include "records/counters.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace torvane {

// How bad one counter of a drive is: 0 sound, 1 early wear, 2 wearing out, 3 failing. A negative counter, "not
// reported" among them, is level 0.

inline constexpr std::int32_t kHoursPerYear = 8760;

[[nodiscard]] constexpr std::uint32_t ageLevel(std::int32_t powerOnHours) {
    if (powerOnHours < 3 * kHoursPerYear) {
        return 0;
    }
    return powerOnHours < 5 * kHoursPerYear ? 1 : 2;
}

/// Of reallocated sectors.
[[nodiscard]] constexpr std::uint32_t remapLevel(std::int32_t sectors) {
    if (sectors <= 0) {
        return 0;
    }
    // A first moved sector weighs more than a first error of any other kind.
    return sectors < 50 ? 2 : 3;
}

/// Of remapping attempts, pending sectors, uncorrectable or reported errors.
[[nodiscard]] constexpr std::uint32_t errorLevel(std::int32_t errors) {
    if (errors <= 0) {
        return 0;
    }
    if (errors < 5) {
        return 1;
    }
    return errors < 10 ? 2 : 3;
}

/// How a counter's value is weighed.
struct CounterLevel {
    Counter counter;
    std::uint32_t (*levelOf)(std::int32_t value);
};

inline constexpr auto kCounterLevels = std::to_array<CounterLevel>({
    {Counter::kReallocatedSectors, remapLevel},
    {Counter::kPowerOnHours, ageLevel},
    {Counter::kReportedUncorrectable, errorLevel},
    {Counter::kReallocationEvents, errorLevel},
    {Counter::kPendingSectors, errorLevel},
    {Counter::kOfflineUncorrectable, errorLevel},
});
static_assert(namesEachCounterOnce(kCounterLevels), "each counter needs its weight in a drive's grade");

[[nodiscard]] constexpr std::uint32_t counterLevel(Counter counter, std::int32_t value) {
    return std::ranges::find(kCounterLevels, counter, &CounterLevel::counter)->levelOf(value);
}

} // namespace torvane
