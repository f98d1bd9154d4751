#pragma once

#include "records/drive_record.h"

#include <string_view>

namespace torvane {

/// A record for the disk image `fileName` (relative to the current folder), so that an image can stand wherever a drive
/// can. The file is open for reading only. Returns null, and logs nothing, when it cannot be opened. One of the
/// program's named operations; no command calls it.
[[nodiscard]] DriveRecordPtr openImageFileAsDrive(std::string_view fileName);

} // namespace torvane
