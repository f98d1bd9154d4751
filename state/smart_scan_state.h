#pragma once

#include "base/fixed_text.h"

#include <array>
#include <cstdint>

namespace torvane {

/// The tool names a drive by one letter, "a" to "z", so drive numbers 0 to 25 can have a name.
inline constexpr int kMaxNamedDrives = 26;

/// A report that a scan of this program has made. Times as FILETIME (Win32): units of 100 ns since 1601.
struct MadeReport {
    std::int64_t scan = 0;     ///< the scan's number; 0: none has made one
    std::uint64_t written = 0; ///< the file's last write, once it was made
};

/// What the last listing of the monitoring tool told, and which reports are whose. Written and read by the scan's
/// thread alone.
struct SmartScanState {
    std::int32_t deviceLineCount = 0; ///< lines of the listing, used or not

    /// The tool's own device name of physical drive N, "/dev/sda" for drive 0; empty when the listing does not name it.
    std::array<FixedText<256>, kMaxNamedDrives> driveNames;

    std::int64_t scan = 0;     ///< scans since the program's start, the one at work included
    std::uint64_t started = 0; ///< when it began, as MadeReport's times
    std::array<MadeReport, kMaxNamedDrives> reports;
};

} // namespace torvane
