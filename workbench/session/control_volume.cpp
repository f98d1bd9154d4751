#include "base/bytes.h"
#include "workbench/description/error_names.h"
#include "workbench/session/control_parts.h"

#include <winioctl.h>

#include <cstddef>

namespace torvane::bench {

// VOLUME_DISK_EXTENTS: the count, padding to 8 bytes, then one DISK_EXTENT of 24 bytes for each.
ControlResult volumeExtents(const VolumeDescription& volume, const ControlRequest& request) {
    constexpr std::size_t kHeader = 8;
    constexpr std::size_t kExtent = 24;
    static_assert(offsetof(VOLUME_DISK_EXTENTS, Extents) == kHeader && sizeof(DISK_EXTENT) == kExtent);
    if (volume.extentsError) {
        return {*volume.extentsError, 0};
    }
    if (volume.kind == VolumeKind::kOptical || volume.kind == VolumeKind::kNetwork) {
        return {kErrorInvalidFunction, 0};
    }
    if (request.out.size() < kHeader + kExtent) {
        return {kErrorInsufficientBuffer, 0};
    }
    std::vector<std::uint8_t> answer(kHeader);
    storeLe<std::uint32_t>(answer, 0, static_cast<std::uint32_t>(volume.extents.size()));
    for (const VolumeExtent& extent : volume.extents) {
        const std::size_t at = answer.size();
        answer.resize(at + kExtent);
        storeLe<std::uint32_t>(answer, at, extent.disk);
        storeLe<std::uint64_t>(answer, at + 8, extent.offset);
        storeLe<std::uint64_t>(answer, at + 16, extent.length);
    }
    if (answer.size() > request.out.size()) {
        // The count comes back, so that the caller knows how much room to bring.
        ControlResult result = giveAsMuchAsFits(request, std::span(answer).first(kHeader));
        result.error = kErrorMoreData;
        return result;
    }
    return giveWhole(request, answer);
}

} // namespace torvane::bench
