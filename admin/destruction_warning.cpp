#include "admin/destruction_warning.h"

#include "base/format.h"
#include "discovery/drive_volumes.h"
#include "records/drive_record.h"

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

std::vector<WarningRow> warningRows(const DriveRecord& destination, const VolumeTable& volumes,
                                    const VolumeIdentityReader& identify) {
    std::vector<WarningRow> rows{driveRow(destination)};
    for (const char letter : volumeLettersOn(destination, volumes)) {
        rows.push_back(volumeRow(letter, identify));
    }
    return rows;
}

} // namespace torvane
