#pragma once

#include "records/drive_record.h"

#include <optional>

namespace torvane {

/// True when the system lets nobody write to the disk (IOCTL_DISK_GET_DISK_ATTRIBUTES, DISK_ATTRIBUTE_READ_ONLY). None
/// when it does not tell: its drivers may be older than the request, which came with Windows 7.
[[nodiscard]] std::optional<bool> readReadOnlyAttribute(NativeHandle device);

} // namespace torvane
