#pragma once

#include "base/machine_claim.h"

#include <initializer_list>
#include <optional>
#include <vector>

namespace torvane {

struct DriveRecord;

/// Drives that a job uses, kept from the jobs of every other Torvane on this computer as long as this lives.
using DriveUse = std::vector<MachineClaim>;

/// Takes the drives; null stands for none, and an image file is no drive of the system. None, after one log row and one
/// box that names the drive, when another Torvane uses one of them.
[[nodiscard]] std::optional<DriveUse> useDrives(std::initializer_list<const DriveRecord*> drives);

} // namespace torvane
