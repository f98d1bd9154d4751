#pragma once

#include "discovery/storage_descriptor.h"
#include "records/drive_record.h"

#include <optional>

namespace torvane {

/// What the device tells of itself now (IOCTL_STORAGE_QUERY_PROPERTY, StorageDeviceProperty). None when it does not
/// answer.
[[nodiscard]] std::optional<StorageDeviceTexts> readStorageDevice(NativeHandle device);

/// The bus version that its adapter tells (StorageAdapterProperty). None when it does not answer.
[[nodiscard]] std::optional<BusVersion> readBusVersion(NativeHandle device);

} // namespace torvane
