#pragma once

#include "records/drive_record.h"

namespace torvane {

/// An empty record that will own a handle of the system: whoever lets the record go closes it.
[[nodiscard]] DriveRecordPtr makeOwnedDriveRecord();

} // namespace torvane
