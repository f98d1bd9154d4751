#pragma once

#include "workbench/devices/ata_identify.h"

namespace torvane::bench {

/// SMART READ DATA: the attribute table and the self-test state.
[[nodiscard]] AtaBlock smartDataBlock(const SmartDescription& smart);

/// SMART READ ATTRIBUTE THRESHOLDS.
[[nodiscard]] AtaBlock smartThresholdsBlock(const SmartDescription& smart);

} // namespace torvane::bench
