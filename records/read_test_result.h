#pragma once

#include <cstdint>

namespace torvane {

/// How a read test of a drive ended. One that is at work reads as passed until it fails or is stopped.
enum class ReadTestResult : std::int32_t {
    kNotPerformed = 1000, ///< since the drive was found
    kFailed = 1001,
    kPassed = 1002,
    kTerminated = 1003, ///< stopped by the user
};

} // namespace torvane
