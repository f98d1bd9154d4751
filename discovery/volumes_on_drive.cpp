#include "discovery/volumes_on_drive.h"

#include "discovery/disk_place.h"
#include "discovery/drive_volumes.h"
#include "records/drive_record.h"

namespace torvane {

namespace {

bool isLetterOn(const DriveRecord& drive, char letter, const VolumeTable& before, VolumeSystem& system) {
    const DiskPlace place = system.placeOfDevice(volumeDevice(static_cast<wchar_t>(letter)));
    return place.kind == DiskPlace::Kind::kNotTold ? holdsVolume(drive, before, letter) : place.isOn(drive.driveNumber);
}

} // namespace

std::vector<std::wstring> volumeRootsOn(const DriveRecord& drive, const VolumeTable& before, VolumeSystem& system) {
    std::vector<std::wstring> roots;
    if (drive.recordKind == kRecordKindImageFile) {
        return roots;
    }
    const std::vector<LetterlessVolume> letterless = system.letterlessVolumes();
    roots.reserve(letterless.size() + ('Z' - 'A' + 1));
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
        if (isLetterOn(drive, letter, before, system)) {
            roots.push_back({static_cast<wchar_t>(letter), L':', L'\\'});
        }
    }
    for (const LetterlessVolume& volume : letterless) {
        if (system.placeOfDevice(volumeDeviceOf(volume.name)).isOn(drive.driveNumber)) {
            roots.push_back(volume.folder.empty() ? volume.name : volume.folder);
        }
    }
    return roots;
}

} // namespace torvane
