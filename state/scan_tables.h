#pragma once

#include "records/drive_record.h"
#include "records/volume_record.h"

#include <array>
#include <atomic>
#include <cstdint>

namespace torvane {

/// Physical drive numbers 0 to 19 are probed, so a scan finds at most this many drives.
inline constexpr int kMaxDrives = 20;

/// The scan's share of the application state.
///
/// The tables are written by the scan's thread, as long as its claim lasts; everybody else reads them when no scan is
/// at work. The window's thread empties them under a new scan's claim, before its thread starts, and fills the volumes
/// anew before a drive is overwritten.
struct ScanState {
    std::atomic<std::int32_t> stage{0};      ///< 0 to 5; 4 is never used
    std::atomic<std::int32_t> scanNumber{0}; ///< counts the scans, so that a progress thread knows its own
    std::atomic<std::int32_t> driveCount{0};
    std::atomic<std::int32_t> drivesNotShown{0};   ///< that the last scan left out, each with its row in the log
    std::array<DriveRecordPtr, kMaxDrives> drives; ///< in probe order, without gaps
    VolumeTable volumes;
};

} // namespace torvane
