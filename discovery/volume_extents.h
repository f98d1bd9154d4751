#pragma once

#include "base/bytes.h"

#include <cstdint>
#include <vector>

namespace torvane {

/// One DISK_EXTENT (Win32, winioctl.h).
struct VolumeExtent {
    std::uint32_t diskNumber = 0;
    std::int64_t startingOffset = 0; ///< bytes
    std::int64_t length = 0;         ///< bytes
};

/// The extents of a VOLUME_DISK_EXTENTS. `answer` is what the volume returned, no more: extents that are counted but do
/// not lie wholly inside it are dropped.
[[nodiscard]] std::vector<VolumeExtent> parseVolumeDiskExtents(ByteView answer);

} // namespace torvane
