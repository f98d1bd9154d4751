#pragma once

namespace torvane {

struct AppState;

/// Refills the volume table from the drive letters C: to Z: and marks the drives that hold extents of C: as system
/// drives. Letters that do not exist, cannot be opened or have no extents are skipped silently.
void EnumerateVolumes(AppState& state);

} // namespace torvane
