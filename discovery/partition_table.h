#pragma once

#include "base/bytes.h"
#include "records/partition_table.h"

#include <optional>

namespace torvane {

/// What a DRIVE_LAYOUT_INFORMATION_EX (Win32, winioctl.h) tells. `answer` is what the device returned, no more; none
/// when it does not hold the whole header. Entries that are counted but do not lie wholly inside it are not seen.
[[nodiscard]] std::optional<PartitionTable> parseDriveLayout(ByteView answer);

} // namespace torvane
