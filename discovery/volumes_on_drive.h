#pragma once

#include "records/volume_record.h"

#include <string>
#include <vector>

namespace torvane {

struct DriveRecord;
class VolumeSystem;

/// The roots of all volumes that have an extent on the drive now: by letter from A: to Z: ("K:\"), then those without a
/// letter by the folder where they are mounted ("C:\mnt\") or by their own name ("\\?\Volume{...}\"). A letter that
/// does not tell its place keeps the one that `before` has for it. None for an image file.
[[nodiscard]] std::vector<std::wstring> volumeRootsOn(const DriveRecord& drive, const VolumeTable& before,
                                                      VolumeSystem& system);

} // namespace torvane
