#include "discovery/drive_volumes.h"

#include "records/drive_record.h"

#include <algorithm>
#include <cstddef>

namespace torvane {

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
    return drive.systemDrive == 1 || holdsVolume(drive, volumes, 'C');
}

} // namespace torvane
