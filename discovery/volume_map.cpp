#include "discovery/volume_map.h"

#include "base/format.h"
#include "base/owned_handle.h"
#include "discovery/device_request.h"
#include "discovery/volume_query.h"
#include "discovery/volume_table.h"
#include "state/scan_tables.h"

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

std::string volumePath(char letter) {
    return formatText("\\\\.\\%c:", letter);
}

/// Opened for reading and writing as ever. A volume that refuses that, such as one that BitLocker has locked, tells its
/// extents without a right, too.
std::vector<VolumeExtent> readVolumeExtents(char letter) {
    const std::string path = volumePath(letter);
    const UniqueHandle volume(openDevice(path.c_str(), FILE_ATTRIBUTE_NORMAL));
    if (volume) {
        return requestExtents(volume.get()).extents;
    }
    return isAbsentVolume(GetLastError()) ? std::vector<VolumeExtent>() : askForExtents(path.c_str()).extents;
}

/// A volume's extents, none for a letter that does not exist. Nothing when the volume is there and does not tell.
std::optional<std::vector<VolumeExtent>> askVolume(char letter) {
    const VolumeAnswer answer = askForExtents(volumePath(letter).c_str());
    const bool told = answer.kind == VolumeAnswer::Kind::kExtents || answer.kind == VolumeAnswer::Kind::kAbsent;
    return told ? std::optional(answer.extents) : std::nullopt;
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

VolumeTable refreshedVolumes(const VolumeTable& before) {
    VolumeTable volumes;
    resetVolumeTable(volumes);
    for (char letter = kFirstLetter; letter <= kLastLetter; ++letter) {
        if (const auto extents = askVolume(letter)) {
            appendVolume(volumes, letter, *extents);
        } else {
            keepVolume(volumes, before, letter);
        }
    }
    return volumes;
}

} // namespace torvane
