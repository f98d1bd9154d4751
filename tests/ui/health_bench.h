#pragma once

#include "tests/ui/driver/bench_folder.h"

namespace torvane::driver {

/// A drive in every condition that the health panel tells apart, named by it: "SOUND", "AGEING", "WEARING", "FAILING"
/// ...
[[nodiscard]] BenchFolder healthBench();

/// The drive "SOUND" alone.
[[nodiscard]] BenchFolder soundDriveBench();

} // namespace torvane::driver
