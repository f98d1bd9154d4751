#pragma once

#include "records/volume_record.h"

namespace torvane {

struct ScanState;

/// Refills the volume table from the drive letters C: to Z: and marks the drives that hold extents of C: as system
/// drives. Letters that do not exist, cannot be opened at all or have no extents are skipped silently.
void EnumerateVolumes(ScanState& scan);

/// The table brought up to date: letters that were given, moved and taken since. A volume is not mounted for it, and
/// one that is there but does not tell its extents now keeps those that the table had. On any thread.
[[nodiscard]] VolumeTable refreshedVolumes(const VolumeTable& before);

} // namespace torvane
