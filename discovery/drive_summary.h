#pragma once

#include "records/volume_record.h"

#include <string>

namespace torvane {

struct DriveRecord;

// What tells drives apart that are alike.

/// N of "\\.\PhysicalDriveN"; empty for an image file, which has none.
[[nodiscard]] std::string driveNumberText(const DriveRecord& drive);

/// The letters of the volumes on the drive, "K: L:"; empty when there are none.
[[nodiscard]] std::string volumeLettersText(const DriveRecord& drive, const VolumeTable& volumes);

/// "Drive 3 - MODEL - SERIAL"; "Image file - ..." in a drive's place.
[[nodiscard]] std::string driveNames(const DriveRecord& drive);

/// All in one line: number, model, serial number, size, letters, and what is printed on the drive where that is
/// something else.
[[nodiscard]] std::string driveSummary(const DriveRecord& drive, const VolumeTable& volumes);

} // namespace torvane
