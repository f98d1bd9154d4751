#pragma once

#include "discovery/volume_extents.h"
#include "records/volume_record.h"

#include <span>

namespace torvane {

/// Empties the table: count 0, letters and disk numbers -1. Offsets and lengths are left as they are.
void resetVolumeTable(VolumeTable& table);

/// Appends one record for each extent of the volume `letter`, as far as the table has room.
void appendVolume(VolumeTable& table, char letter, std::span<const VolumeExtent> extents);

/// Appends what `before` holds of the volume `letter`, as far as the table has room.
void keepVolume(VolumeTable& table, const VolumeTable& before, char letter);

} // namespace torvane
