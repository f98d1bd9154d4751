#pragma once

#include "records/volume_record.h"

#include <vector>

namespace torvane {

struct DriveRecord;

// Which volumes of the last scan lie on a drive.

/// The letters of the volumes that have an extent on the drive, each once, in the table's order. None for an image
/// file, which is no disk of the system.
[[nodiscard]] std::vector<char> volumeLettersOn(const DriveRecord& drive, const VolumeTable& volumes);

/// True when the volume with that letter, upper case, has an extent on the drive; never for the letter 0.
[[nodiscard]] bool holdsVolume(const DriveRecord& drive, const VolumeTable& volumes, char letter);

/// True for the drive that Windows runs from: the one that holds C:. The scan's mark goes by the drives' positions,
/// which differ from their numbers where these have gaps, so the volumes are asked too.
[[nodiscard]] bool isSystemDrive(const DriveRecord& drive, const VolumeTable& volumes);

/// True for a drive that the scan has marked although C: is known, and lies on other drives.
[[nodiscard]] bool isMarkedByMistake(const DriveRecord& drive, const VolumeTable& volumes);

} // namespace torvane
