#pragma once

#include "workbench/description/ata_description.h"
#include "workbench/description/bench_description.h"
#include "workbench/description/fault_description.h"
#include "workbench/description/json_reader.h"
#include "workbench/description/nvme_description.h"
#include "workbench/description/volume_description.h"

#include <optional>

// The readers of the single objects that a bench's files are made of. Every one reports its mistakes through the
// reader.
namespace torvane::bench {

void readAta(ObjectReader& reader, AtaDescription& ata);
void readNvme(ObjectReader& reader, NvmeDescription& nvme);
void readFaults(ObjectReader& reader, const DriveDescription& drive, DriveFaults& faults);

/// `ownDisk`: the drive in whose file the volume stands; nothing in bench.json.
[[nodiscard]] VolumeDescription readVolume(ObjectReader& reader, std::optional<std::uint32_t> ownDisk);

/// A drive's file, and the volumes that stand in it.
[[nodiscard]] DriveDescription readDrive(ObjectReader& reader, std::vector<VolumeDescription>& volumes);

/// What only the whole bench can tell: numbers and letters that stand twice, extents that name no drive, reach past its
/// end or overlap.
void checkWhole(const BenchDescription& bench, Mistake& mistake);

} // namespace torvane::bench
