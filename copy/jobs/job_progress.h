#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace torvane {

/// How far a job is, for its time left.
struct JobTiming {
    std::int64_t startTick = 0; ///< milliseconds
    std::int64_t done = 0;      ///< blocks
    std::int64_t total = 0;     ///< blocks
};

/// The time left as "hours:minutes:seconds", two digits each and more for the hours where needed. "00:00:00" during the
/// first second and before the first block is done. `nowTick` is in milliseconds.
[[nodiscard]] std::string EstimateRemainingTime(const JobTiming& timing, std::int64_t nowTick);

enum class CopyDirection : std::int32_t { kForward = 1, kReverse = 2 };

/// 0 to 100, rounded down. A job without a single full block is done: 100.
[[nodiscard]] std::int32_t percentDone(std::int64_t done, std::int64_t total);

/// The vehicle's x, in dialog pixels.
[[nodiscard]] std::int32_t carPosition(std::int64_t done, std::int64_t total, CopyDirection direction);

/// The status line while a job runs: `label` is " Status" or " Image Status". The percent sign stands before the
/// number.
[[nodiscard]] std::string statusLine(std::string_view label, std::string_view remaining, std::int32_t percent);

} // namespace torvane
