#pragma once

#include "records/drive_record.h"

namespace torvane {

/// An empty record that will own a handle of the system: whoever lets the record go closes it, but
/// for who has leased it (handle_lease.h).
[[nodiscard]] DriveRecordPtr makeOwnedDriveRecord();

} // namespace torvane
