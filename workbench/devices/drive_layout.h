#pragma once

#include "workbench/description/drive_description.h"
#include "workbench/description/volume_description.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace torvane::bench {

/// Reads from the drive's content; what it cannot give is zero. `offset`, `length`: bytes.
using ContentReader = std::function<std::vector<std::uint8_t>(std::uint64_t offset, std::size_t length)>;

/// DRIVE_LAYOUT_INFORMATION_EX of a drive (Win32, winioctl.h) with all its PARTITION_INFORMATION_EX: the GPT or the
/// four primary entries of the MBR that lie on it. Where neither does, and volumes are described, they are partitions
/// of an MBR whose signature follows from the drive's content; else the drive is raw. `extents`: of the mounted
/// volumes, those on this drive.
[[nodiscard]] std::vector<std::uint8_t> driveLayout(const DriveDescription& drive, const ContentReader& read,
                                                    const std::vector<VolumeExtent>& extents);

} // namespace torvane::bench
