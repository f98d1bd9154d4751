#pragma once

#include "base/fixed_text.h"

#include <array>
#include <cstdint>

namespace torvane {

/// The tool names a drive by one letter, "a" to "z", so drive numbers 0 to 25 can have a name.
inline constexpr int kMaxNamedDrives = 26;

/// What the last listing of the monitoring tool told. Written and read by the scan's thread alone.
struct SmartScanState {
    std::int32_t deviceLineCount = 0; ///< lines of the listing, used or not

    /// The tool's own device name of physical drive N, "/dev/sda" for drive 0; empty when the listing does not name it.
    std::array<FixedText<256>, kMaxNamedDrives> driveNames;
};

} // namespace torvane
