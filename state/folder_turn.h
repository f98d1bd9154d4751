#pragma once

#include "base/machine_claim.h"

#include <optional>

namespace torvane {

/// Waits until no other Torvane uses the files in the current folder that have the same names in each: scripts of
/// diskpart with their results, what PowerShell prints of BitLocker, the number of the next image. They are this
/// program's as long as the result lives; its own threads share them. None when another Torvane kept them for 15
/// seconds; without a log row.
[[nodiscard]] std::optional<MachineClaim> awaitFolderTurn();

} // namespace torvane
