#pragma once

#include "workbench/description/bench_description.h"
#include "workbench/session/bench_folder.h"

#include <cstdint>
#include <vector>

namespace torvane::bench {

// The partition table of a drive as the system knows it. It reads the medium's when the drive is plugged in, at
// IOCTL_DISK_UPDATE_PROPERTIES and when something makes it look; until then it tells what it has read before, whatever
// raw writes have put there, and the volumes stay as they were. `drive`: the one that is in its place.

/// DRIVE_LAYOUT_INFORMATION_EX as the system tells it now.
[[nodiscard]] std::vector<std::uint8_t> toldTable(BenchFolder& folder, const BenchDescription& bench,
                                                  const DriveDescription& drive);

/// To be called before a raw write of `length` bytes at `offset`: what was told of the table goes on being told.
void keepToldTable(BenchFolder& folder, const BenchDescription& bench, const DriveDescription& drive,
                   std::uint64_t offset, std::uint64_t length);

/// The system reads the table that lies on the drive now.
void readTableAnew(BenchFolder& folder, const BenchDescription& bench, const DriveDescription& drive);

} // namespace torvane::bench
