#include "discovery/image_place.h"

#include "discovery/disk_place.h"
#include "discovery/drive_volumes.h"
#include "discovery/volumes_on_drive.h"
#include "records/drive_record.h"

#include <algorithm>
#include <vector>

namespace torvane {

namespace {

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
    if (place.isOn(drive.driveNumber) || holdsVolume(drive, volumes, driveLetterOf(image)) ||
        isSharedFromTheDrive(image, drive, volumes, system)) {
        return ImagePlace::kOnTheDrive;
    }
    return place.kind == DiskPlace::Kind::kNotTold ? ImagePlace::kNotTold : ImagePlace::kElsewhere;
}

} // namespace torvane
