#pragma once

#include "discovery/volume_extents.h"
#include "discovery/volume_record.h"

#include <cstdint>
#include <span>

namespace torvane {

struct AppState;

/// Refills the volume table from the drive letters C: to Z: and marks the drives that hold extents of C: as system
/// drives. Letters that do not exist, cannot be opened or have no extents are skipped silently.
void EnumerateVolumes(AppState& state);

/// Empties the table: count 0, letters and disk numbers -1. Offsets and lengths are left as they are.
void resetVolumeTable(VolumeTable& table);

/// Appends one record for each extent of the volume `letter`, as far as the table has room.
void appendVolume(VolumeTable& table, char letter, std::span<const VolumeExtent> extents);

} // namespace torvane
