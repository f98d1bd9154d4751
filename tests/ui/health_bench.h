#pragma once

#include "tests/ui/driver/bench_folder.h"

namespace torvane::driver {

/// A drive in every condition that the health panel tells apart, named by it: "SOUND", "AGEING", "WEARING", "FAILING"
/// ...
[[nodiscard]] BenchFolder healthBench();

/// The drive "SOUND" alone.
[[nodiscard]] BenchFolder soundDriveBench();

/// The drives "SOUND", "AGEING" and "WEARING", of the levels 0, 1 and 2.
[[nodiscard]] BenchFolder gradedDrivesBench();

} // namespace torvane::driver
