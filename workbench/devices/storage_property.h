#pragma once

#include "workbench/description/drive_description.h"

#include <cstdint>
#include <vector>

namespace torvane::bench {

using Bytes = std::vector<std::uint8_t>;

/// DISK_GEOMETRY (24 bytes): 255 heads, 63 sectors for each track, fixed or removable medium.
[[nodiscard]] Bytes driveGeometry(const DriveDescription& drive);

/// DISK_GEOMETRY_EX without the partition and detection records that may follow it (32 bytes).
[[nodiscard]] Bytes driveGeometryEx(const DriveDescription& drive);

/// GET_DISK_ATTRIBUTES (16 bytes): DISK_ATTRIBUTE_READ_ONLY or nothing.
[[nodiscard]] Bytes diskAttributes(bool readOnly);

/// STORAGE_DEVICE_NUMBER of the whole disk: device type, N of "\\.\PhysicalDriveN", partition number 0.
[[nodiscard]] Bytes deviceNumber(const DriveDescription& drive);

/// STORAGE_DEVICE_DESCRIPTOR with the identity's texts behind it, as the description's overrides change it.
[[nodiscard]] Bytes deviceDescriptor(const DriveDescription& drive);

/// STORAGE_ADAPTER_DESCRIPTOR (32 bytes).
[[nodiscard]] Bytes adapterDescriptor(const DriveDescription& drive);

} // namespace torvane::bench
