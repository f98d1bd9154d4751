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

/// True while the record's handle reaches the disk that was probed, read anew: it answers, and its number
/// (IOCTL_STORAGE_GET_DEVICE_NUMBER), by which diskpart selects it, its size, its descriptor's texts, the count of its
/// media changes (IOCTL_STORAGE_CHECK_VERIFY) and what names it in its partition table are what the record holds. What
/// the disk did not tell then is not compared; what it told then, it has to tell. A disk that was unplugged does not
/// answer, even when another has got its number. An image file is always what it was.
[[nodiscard]] bool isStillTheProbedDisk(const DriveRecord& drive);

/// The same of a drive that is only read: it may have failed so far that its partition table and media changes are not
/// told any more. A higher count is no proof against a partition table that names the disk and is the same, since the
/// resets of a failing drive raise it as well; and a number that its driver never tells is not compared.
[[nodiscard]] bool isStillTheProbedSource(const DriveRecord& drive);

/// True when the handle reaches the disk that was probed as `drive`, and no disk that may be another one: plugged in
/// again it may have another number and counts its media changes anew. Size, descriptor and, where it was told, the
/// partition table have to agree; a disk that has told neither a serial number nor a name in its table is nobody's.
[[nodiscard]] bool isTheProbedDiskAgain(const DriveRecord& drive, NativeHandle device);

/// The scan's part, after the last request that it sends to a probed drive: keeps the count of media changes, as far as
/// the drive tells it.
void rememberMediaChanges(DriveRecord& drive);

/// From now on the partition table that the drive holds is its own: called by the scan, and by whoever has changed it
/// (a clean, a copy onto the drive, whole or not). The medium has to be the one that it was.
void rememberPartitionTable(DriveRecord& drive);

/// The same where the drive tells its table. One that does not any more, and did, keeps what it told: it is not to be
/// taken for whatever disk comes next.
void rememberToldPartitionTable(DriveRecord& drive);

} // namespace torvane
