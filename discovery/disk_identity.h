#pragma once

#include "discovery/partition_table.h"
#include "discovery/storage_descriptor.h"
#include "records/drive_record.h"

#include <optional>

namespace torvane {

/// Size and sector size as the device tells them now (IOCTL_DISK_GET_DRIVE_GEOMETRY_EX). None when it does not answer.
[[nodiscard]] std::optional<DiskGeometry> readDiskGeometry(NativeHandle device);

/// What names the disk in its partition table, as the device tells it now (IOCTL_DISK_GET_DRIVE_LAYOUT_EX). None when
/// it does not tell.
[[nodiscard]] std::optional<PartitionTable> readPartitionTable(NativeHandle device);

/// True while the record's handle reaches the disk that was probed: it answers, and both its number
/// (IOCTL_STORAGE_GET_DEVICE_NUMBER), by which diskpart selects it, and its size are what the record holds. A disk that
/// was unplugged does not answer, even when another has got its number. An image file is always what it was.
[[nodiscard]] bool isStillTheProbedDisk(const DriveRecord& drive);

/// The same of a drive that is only read: it may have failed so far that its partition table is not told any more.
[[nodiscard]] bool isStillTheProbedSource(const DriveRecord& drive);

/// From now on the partition table that the drive holds is its own: called by whoever has changed it (a clean, a copy
/// onto the drive, whole or not).
void rememberPartitionTable(DriveRecord& drive);

} // namespace torvane
