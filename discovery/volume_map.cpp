#include "discovery/volume_map.h"

#include "base/format.h"
#include "base/owned_handle.h"
#include "discovery/device_request.h"
#include "discovery/volume_table.h"
#include "state/scan_tables.h"

#include <winioctl.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace torvane {

namespace {

constexpr char kFirstLetter = 'C'; // A: and B: are never looked at
constexpr char kLastLetter = 'Z';
constexpr char kSystemLetter = 'C';
constexpr std::size_t kExtentsAnswerBytes = 4096;

std::string volumePath(char letter) {
    return formatText("\\\\.\\%c:", letter);
}

/// Nothing when the volume does not tell.
std::optional<std::vector<VolumeExtent>> requestExtents(HANDLE volume) {
    std::array<std::uint8_t, kExtentsAnswerBytes> buffer{};
    const auto answer = requestFromDevice(volume, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, {}, buffer);
    return answer ? std::optional(parseVolumeDiskExtents(*answer)) : std::nullopt;
}

std::vector<VolumeExtent> readVolumeExtents(char letter) {
    const UniqueHandle volume(openDevice(volumePath(letter).c_str(), FILE_ATTRIBUTE_NORMAL));
    if (!volume) {
        return {};
    }
    return requestExtents(volume.get()).value_or(std::vector<VolumeExtent>());
}

/// A volume's extents, none for a letter that does not exist. Nothing when the volume is there and does not tell.
std::optional<std::vector<VolumeExtent>> askVolume(char letter) {
    const UniqueHandle volume(openDeviceForQuery(volumePath(letter).c_str()));
    if (!volume) {
        const DWORD error = GetLastError();
        const bool absent = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
        return absent ? std::optional(std::vector<VolumeExtent>()) : std::nullopt;
    }
    return requestExtents(volume.get());
}

// The disk number serves as the position in the drive table, which is the right one while the drives are numbered from
// 0 without gaps; kept so. A position that the table does not have is skipped.
void markSystemDrives(ScanState& scan, std::span<const VolumeExtent> extents) {
    for (const VolumeExtent& extent : extents) {
        if (extent.diskNumber < static_cast<std::uint32_t>(scan.driveCount)) {
            scan.drives[extent.diskNumber]->systemDrive = 1;
        }
    }
}

} // namespace

void EnumerateVolumes(ScanState& scan) {
    resetVolumeTable(scan.volumes);
    for (char letter = kFirstLetter; letter <= kLastLetter; ++letter) {
        const std::vector<VolumeExtent> extents = readVolumeExtents(letter);
        if (letter == kSystemLetter) {
            markSystemDrives(scan, extents);
        }
        appendVolume(scan.volumes, letter, extents);
    }
}

void refreshVolumes(ScanState& scan) {
    const VolumeTable before = scan.volumes;
    resetVolumeTable(scan.volumes);
    for (char letter = kFirstLetter; letter <= kLastLetter; ++letter) {
        if (const auto extents = askVolume(letter)) {
            appendVolume(scan.volumes, letter, *extents);
        } else {
            keepVolume(scan.volumes, before, letter);
        }
    }
}

} // namespace torvane
