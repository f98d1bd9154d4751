#pragma once

#include <cstdint>

namespace torvane {

/// State of the system's automatic mounting of new volumes.
enum MountStatus : std::int32_t {
    kMountingDisabled = 1000,
    kMountingEnabled = 1001,
    kMountingUndetermined = 1002, ///< diskpart said neither
    kMountingChanging = 1003,     ///< a disable request is in progress
};

} // namespace torvane
