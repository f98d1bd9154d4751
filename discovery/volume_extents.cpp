#include "discovery/volume_extents.h"

#include <algorithm>
#include <cstddef>

namespace torvane {

std::vector<VolumeExtent> parseVolumeDiskExtents(ByteView answer) {
    // VOLUME_DISK_EXTENTS: a 32-bit count, padded to 8 bytes, then DISK_EXTENTs of 24 bytes: 32-bit disk number,
    // padding, 64-bit offset, 64-bit length.
    constexpr std::size_t kHeaderBytes = 8;
    constexpr std::size_t kExtentBytes = 24;
    const std::size_t present = answer.size() < kHeaderBytes ? 0 : (answer.size() - kHeaderBytes) / kExtentBytes;
    const std::size_t count = std::min<std::size_t>(loadLe32(answer, 0), present);

    std::vector<VolumeExtent> extents;
    extents.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const ByteView extent = answer.subspan(kHeaderBytes + i * kExtentBytes, kExtentBytes);
        extents.push_back({.diskNumber = loadLe32(extent, 0),
                           .startingOffset = static_cast<std::int64_t>(loadLe64(extent, 8)),
                           .length = static_cast<std::int64_t>(loadLe64(extent, 16))});
    }
    return extents;
}

} // namespace torvane
