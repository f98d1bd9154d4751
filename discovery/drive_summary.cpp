#include "discovery/drive_summary.h"

#include "discovery/drive_volumes.h"
#include "records/drive_record.h"
#include "records/drive_texts.h"

namespace torvane {

std::string driveNumberText(const DriveRecord& drive) {
    return drive.recordKind == kRecordKindImageFile ? std::string() : std::to_string(drive.driveNumber);
}

std::string volumeLettersText(const DriveRecord& drive, const VolumeTable& volumes) {
    std::string text;
    for (const char letter : volumeLettersOn(drive, volumes)) {
        text.append(text.empty() ? "" : " ").append(1, letter).append(":");
    }
    return text;
}

std::string driveNames(const DriveRecord& drive) {
    const std::string number = driveNumberText(drive);
    std::string text = number.empty() ? "Image file" : "Drive " + number;
    return text.append(" - ").append(drive.model.view()).append(" - ").append(drive.serialNumber.view());
}

std::string driveSummary(const DriveRecord& drive, const VolumeTable& volumes) {
    const std::string letters = volumeLettersText(drive, volumes);
    std::string text = driveNames(drive);
    text.append(" - ").append(sizeGigabytesText(drive)).append(" GB - ");
    text.append(letters.empty() ? "no drive letters" : letters);
    const std::string printed = printedIdentityText(drive);
    return printed.empty() ? text : text.append(" - printed: ").append(printed);
}

} // namespace torvane
