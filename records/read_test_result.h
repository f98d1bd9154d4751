#pragma once

#include "base/shared_number.h"

#include <cstdint>

namespace torvane {

/// How a read test of a drive ended. One that is at work reads as passed until it fails or is stopped: ask
/// `DriveRecord::readTestsAtWork`, too.
enum class ReadTestResult : std::int32_t {
    kNotPerformed = 1000, ///< since the drive was found
    kFailed = 1001,
    kPassed = 1002,
    kTerminated = 1003, ///< stopped by the user
};

/// Runs of each read test that have begun and are not over. A test may be started a second time while it runs.
struct ReadTestsAtWork {
    SharedNumber<std::int32_t> shortTests = 0;
    SharedNumber<std::int32_t> criticalTests = 0;
    SharedNumber<std::int32_t> nistTests = 0;
};

} // namespace torvane
