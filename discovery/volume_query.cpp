#include "discovery/volume_query.h"

#include "base/owned_handle.h"
#include "discovery/device_request.h"

#include <winioctl.h>

#include <array>
#include <cstddef>
#include <utility>

namespace torvane {

namespace {

constexpr std::size_t kExtentsAnswerBytes = 4096;

VolumeAnswer failedWith(VolumeAnswer::Kind kind) {
    return {.kind = kind, .extents = {}, .whole = false};
}

} // namespace

bool isAbsentVolume(std::uint32_t error) {
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

VolumeAnswer requestExtents(NativeHandle volume) {
    std::array<std::uint8_t, kExtentsAnswerBytes> buffer{};
    const auto answer = requestFromDevice(volume, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, {}, buffer);
    if (!answer) {
        const bool unknown = isUnknownRequest(GetLastError());
        return failedWith(unknown ? VolumeAnswer::Kind::kUnsupported : VolumeAnswer::Kind::kFailed);
    }
    std::vector<VolumeExtent> extents = parseVolumeDiskExtents(*answer);
    const bool whole = !extents.empty() && extents.size() == loadLe32(*answer, 0);
    return {.kind = VolumeAnswer::Kind::kExtents, .extents = std::move(extents), .whole = whole};
}

VolumeAnswer askForExtents(const char* device) {
    const UniqueHandle volume(openDeviceForQuery(device));
    if (!volume) {
        return failedWith(isAbsentVolume(GetLastError()) ? VolumeAnswer::Kind::kAbsent : VolumeAnswer::Kind::kFailed);
    }
    return requestExtents(volume.get());
}

DiskPlace placeOf(const VolumeAnswer& answer) {
    switch (answer.kind) {
    case VolumeAnswer::Kind::kAbsent:
    case VolumeAnswer::Kind::kUnsupported:
        return {.kind = DiskPlace::Kind::kOnNoDisk, .disks = {}};
    case VolumeAnswer::Kind::kFailed:
        return {};
    case VolumeAnswer::Kind::kExtents:
        break;
    }
    if (!answer.whole) {
        return {};
    }
    DiskPlace place{.kind = DiskPlace::Kind::kOnDisks, .disks = {}};
    place.disks.reserve(answer.extents.size());
    for (const VolumeExtent& extent : answer.extents) {
        place.disks.push_back(extent.diskNumber);
    }
    return place;
}

} // namespace torvane
