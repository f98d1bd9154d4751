#include "admin/destruction_warning.h"

#include "base/format.h"
#include "discovery/drive_record.h"

#include <algorithm>
#include <cstddef>

namespace torvane {

namespace {

WarningRow driveRow(const DriveRecord& drive) {
    return {"PHYSICAL", formatText("%03d - %s %s", drive.driveNumber, drive.model.c_str(), drive.serialNumber.c_str()),
            "DESTINATION"};
}

WarningRow volumeRow(char letter, const VolumeIdentityReader& identify) {
    // A volume that does not answer, such as one without a file system, is listed all the same.
    const VolumeIdentity identity = identify(letter).value_or(VolumeIdentity{std::string(kNotAvailable), 0});
    return {"VOLUME",
            formatText("%c:\\ - %s - %04X-%04X", letter, identity.label.c_str(), identity.serialNumber >> 16,
                       identity.serialNumber & 0xFFFF),
            "RELATED VOLUME"};
}

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

std::vector<WarningRow> warningRows(const DriveRecord& destination, const VolumeTable& volumes,
                                    const VolumeIdentityReader& identify) {
    std::vector<WarningRow> rows{driveRow(destination)};
    for (const char letter : volumeLettersOn(destination, volumes)) {
        rows.push_back(volumeRow(letter, identify));
    }
    return rows;
}

} // namespace torvane
