#pragma once

#include "records/drive_record.h"

#include <cstdint>

namespace torvane {

/// Bytes of a sector where a drive tells nothing that can be worked with.
inline constexpr std::int32_t kUsualSectorSize = 512;

/// A sector size as a drive told it; 512 for zero and for a negative number.
[[nodiscard]] constexpr std::int32_t usableSectorSize(std::int32_t bytesPerSector) {
    return bytesPerSector > 0 ? bytesPerSector : kUsualSectorSize;
}

/// The drive's usable bytes per sector.
[[nodiscard]] inline std::uint64_t sectorSizeOf(const DriveRecord& drive) {
    return static_cast<std::uint64_t>(usableSectorSize(drive.bytesPerSector));
}

} // namespace torvane
