#pragma once

#include "discovery/disk_place.h"
#include "discovery/volume_extents.h"
#include "records/drive_record.h"

#include <cstdint>
#include <vector>

namespace torvane {

/// What a volume said when it was asked on which disks it lies.
struct VolumeAnswer {
    enum class Kind : std::uint8_t {
        kExtents,
        kAbsent,      ///< there is no such volume
        kUnsupported, ///< it knows no such request: it lies on no disk
        kFailed,
    };
    Kind kind = Kind::kFailed;
    std::vector<VolumeExtent> extents;
    bool whole = false; ///< as many extents as the answer says that it has, and at least one
};

/// True for the errors (GetLastError) of opening a volume that is not there.
[[nodiscard]] bool isAbsentVolume(std::uint32_t error);

/// Asks the volume behind the device, "\\.\C:" or "\\?\Volume{...}", for its extents
/// (IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS). It is not mounted for that.
[[nodiscard]] VolumeAnswer askForExtents(const char* device);

/// The same of a volume that is open already.
[[nodiscard]] VolumeAnswer requestExtents(NativeHandle volume);

/// The disks of that answer. Extents that are counted and not there make it worthless.
[[nodiscard]] DiskPlace placeOf(const VolumeAnswer& answer);

} // namespace torvane
