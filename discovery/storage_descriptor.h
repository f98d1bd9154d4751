#pragma once

#include "base/bytes.h"
#include "records/device_identity.h"

#include <cstdint>

namespace torvane {

/// `descriptor` is what the device returned, no more: a text ends at its NUL or at the view's end, and numbers beyond
/// the end read as zero.
[[nodiscard]] StorageDeviceTexts parseStorageDeviceDescriptor(ByteView descriptor);

/// Bus version from a STORAGE_ADAPTER_DESCRIPTOR.
struct BusVersion {
    std::int32_t major = 0;
    std::int32_t minor = 0;
};

[[nodiscard]] BusVersion parseStorageAdapterDescriptor(ByteView descriptor);

/// What the probe takes from a DISK_GEOMETRY_EX (Win32, winioctl.h).
struct DiskGeometry {
    std::int32_t bytesPerSector = 0;
    std::int64_t sizeBytes = 0;
};

[[nodiscard]] DiskGeometry parseDiskGeometry(ByteView geometry);

struct DriveRecord;

/// Keeps what the device told, and fills bus type and text, vendor, product, serial number and firmware. Absent texts
/// become "Not Available", and so does a serial number that is not wholly printable.
void applyStorageDevice(DriveRecord& record, const StorageDeviceTexts& device);

/// Fills size in bytes, in units of 512 bytes and in units of 2^30 bytes, and the bytes per sector.
void applyDiskGeometry(DriveRecord& record, const DiskGeometry& geometry);

} // namespace torvane
