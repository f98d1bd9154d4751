#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace torvane {

/// One extent of one volume.
struct VolumeRecord {
    std::int64_t startingOffset = 0; ///< bytes from the start of the disk
    std::int64_t extentLength = 0;   ///< bytes
    std::int32_t driveLetter = 0;    ///< 'C' to 'Z'; -1: unused
    std::int32_t diskNumber = 0;     ///< N of "\\.\PhysicalDriveN"; -1: unused
};

inline constexpr std::size_t kMaxVolumeRecords = 50;

/// The volumes of the last scan, in letter order; extents beyond the table's room are dropped.
struct VolumeTable {
    std::array<VolumeRecord, kMaxVolumeRecords> records{};
    std::int32_t count = 0;
};

} // namespace torvane
