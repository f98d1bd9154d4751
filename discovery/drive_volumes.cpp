#include "discovery/drive_volumes.h"

#include "records/drive_record.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace torvane {

namespace {

constexpr char kSystemLetter = 'C';

} // namespace

std::vector<char> volumeLettersOn(const DriveRecord& drive, const VolumeTable& volumes) {
    std::vector<char> letters;
    if (drive.recordKind == kRecordKindImageFile) {
        return letters;
    }
    for (int i = 0; i < volumes.count; ++i) {
        const VolumeRecord& volume = volumes.records[static_cast<std::size_t>(i)];
        const char letter = static_cast<char>(volume.driveLetter);
        // A volume may have several extents on one disk.
        if (volume.diskNumber == drive.driveNumber &&
            std::find(letters.begin(), letters.end(), letter) == letters.end()) {
            letters.push_back(letter);
        }
    }
    return letters;
}

bool holdsVolume(const DriveRecord& drive, const VolumeTable& volumes, char letter) {
    const std::vector<char> letters = volumeLettersOn(drive, volumes);
    return letter != 0 && std::find(letters.begin(), letters.end(), letter) != letters.end();
}

bool isSystemDrive(const DriveRecord& drive, const VolumeTable& volumes) {
    return drive.systemDrive == 1 || holdsVolume(drive, volumes, kSystemLetter);
}

bool isMarkedByMistake(const DriveRecord& drive, const VolumeTable& volumes) {
    const auto listed = std::span(volumes.records).first(static_cast<std::size_t>(volumes.count));
    const bool known = std::any_of(listed.begin(), listed.end(),
                                   [](const VolumeRecord& volume) { return volume.driveLetter == kSystemLetter; });
    return drive.systemDrive == 1 && known && !holdsVolume(drive, volumes, kSystemLetter);
}

} // namespace torvane
