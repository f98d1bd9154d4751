#pragma once

#include "records/drive_record.h"

#include <optional>
#include <string>

namespace torvane {

/// Makes the system read the drive's partition table from its medium (IOCTL_DISK_UPDATE_PROPERTIES). Whatever raw
/// writes have put there, it tells the table that it has read before, and keeps the volumes of that one, until it is
/// asked so or the drive is plugged in anew. None when it did, and where the request is not known; else why it failed,
/// in the system's words. An image file has no such table.
[[nodiscard]] std::optional<std::string> makeSystemReadTable(const DriveRecord& drive);

} // namespace torvane
