#pragma once

#include "workbench/session/control.h"

// One function for each family of control requests. They add what they know about the request to its log line.
namespace torvane::bench {

/// Copies as much of `answer` as `out` holds, as drivers do with descriptors.
[[nodiscard]] ControlResult giveAsMuchAsFits(const ControlRequest& request, std::span<const std::uint8_t> answer);
/// Copies all of `answer`; an `out` too small for it is ERROR_INSUFFICIENT_BUFFER.
[[nodiscard]] ControlResult giveWhole(const ControlRequest& request, std::span<const std::uint8_t> answer);

/// IOCTL_STORAGE_QUERY_PROPERTY: descriptors, and NVMe data where the drive answers that way.
[[nodiscard]] ControlResult queryProperty(BenchDrive& drive, const ControlRequest& request, LogLine& line);

/// IOCTL_DISK_GET_DRIVE_LAYOUT_EX.
[[nodiscard]] ControlResult partitionLayout(BenchSession& session, BenchDrive& drive, const ControlRequest& request);
/// IOCTL_STORAGE_CHECK_VERIFY: how often the medium was changed, where the caller has room for it.
[[nodiscard]] ControlResult mediaChanges(BenchSession& session, BenchDrive& drive, const ControlRequest& request);

/// SMART_GET_VERSION, SMART_RCV_DRIVE_DATA, SMART_SEND_DRIVE_COMMAND, IOCTL_ATA_PASS_THROUGH.
[[nodiscard]] ControlResult smartVersion(BenchDrive& drive, const ControlRequest& request);
[[nodiscard]] ControlResult smartCommand(BenchDrive& drive, const ControlRequest& request, LogLine& line);
[[nodiscard]] ControlResult ataPassThrough(BenchDrive& drive, const ControlRequest& request, LogLine& line);

/// IOCTL_SCSI_PASS_THROUGH and IOCTL_SCSI_PASS_THROUGH_DIRECT.
[[nodiscard]] ControlResult scsiPassThrough(BenchDrive& drive, const ControlRequest& request, bool direct,
                                            LogLine& line);
/// IOCTL_SCSI_GET_ADDRESS.
[[nodiscard]] ControlResult scsiAddress(BenchDrive& drive, const ControlRequest& request);
/// IOCTL_SCSI_MINIPORT.
[[nodiscard]] ControlResult scsiMiniport(BenchDrive& drive, const ControlRequest& request, LogLine& line);

/// IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS.
[[nodiscard]] ControlResult volumeExtents(const VolumeDescription& volume, const ControlRequest& request);

/// What is logged of a request: its bytes up to `length`.
[[nodiscard]] std::span<const std::uint8_t> requestBytes(const ControlRequest& request, std::size_t length);

} // namespace torvane::bench
