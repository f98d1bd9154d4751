#include "discovery/image_place.h"

#include "discovery/disk_place.h"
#include "discovery/drive_volumes.h"
#include "discovery/volumes_on_drive.h"
#include "records/drive_record.h"

#include <algorithm>
#include <vector>

namespace torvane {

namespace {

/// The path's drive letter in upper case; 0 for a path without one, as on a share.
char volumeLetterOf(const std::wstring& path) {
    if (path.size() < 2 || path[1] != L':') {
        return 0;
    }
    if (path[0] >= L'a' && path[0] <= L'z') {
        return static_cast<char>(path[0] - L'a' + L'A');
    }
    return path[0] >= L'A' && path[0] <= L'Z' ? static_cast<char>(path[0]) : '\0';
}

/// A share of this computer under a name or an address that is not known for its own: the file is found again on the
/// drive's volumes, if it is there.
bool isSharedFromTheDrive(const std::wstring& image, const DriveRecord& drive, const VolumeTable& volumes,
                          VolumeSystem& system) {
    if (!leadsToShare(image, system)) {
        return false;
    }
    const auto identity = system.identityOf(image);
    const std::vector<std::wstring> roots = volumeRootsOn(drive, volumes, system);
    return identity && std::any_of(roots.begin(), roots.end(),
                                   [&](const std::wstring& root) { return system.holdsFile(root, *identity); });
}

} // namespace

ImagePlace placeOfImage(const std::wstring& image, const DriveRecord& drive, const VolumeTable& volumes,
                        VolumeSystem& system) {
    const DiskPlace place = diskPlaceOf(image, system);
    if (place.isOn(drive.driveNumber) || holdsVolume(drive, volumes, volumeLetterOf(image)) ||
        isSharedFromTheDrive(image, drive, volumes, system)) {
        return ImagePlace::kOnTheDrive;
    }
    return place.kind == DiskPlace::Kind::kNotTold ? ImagePlace::kNotTold : ImagePlace::kElsewhere;
}

} // namespace torvane
