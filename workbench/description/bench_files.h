#pragma once

#include "workbench/description/bench_description.h"

#include <filesystem>
#include <string>

namespace torvane::bench {

/// Reads and validates the bench in `folder`. A folder without bench.json is an error like any other.
[[nodiscard]] BenchReading readBenchFolder(const std::filesystem::path& folder);

/// Copies the descriptions of the bench in `source` to `target`, which must not exist yet or be empty.
/// `fresh`: what a bench keeps in `target` (descriptions, backing files, state, log) is removed first; anything else
/// in it is an error. Empty on success, else one line that tells what is wrong. `source` is validated before anything
/// is touched.
[[nodiscard]] std::string layOutBench(const std::filesystem::path& source, const std::filesystem::path& target,
                                      bool fresh);

} // namespace torvane::bench
