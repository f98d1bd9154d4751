#pragma once

#include "workbench/description/bench_description.h"
#include "workbench/description/bench_state.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace torvane::bench {

/// A line of a script that was carried out, for the log.
struct DiskpartStep {
    std::string line;
    std::string target; ///< "drive:N", or "bench" when no disk is selected
    std::uint32_t exitCode = 0;
};

/// What a run of diskpart did.
struct DiskpartRun {
    std::string output;              ///< bytes, lines end in CR LF
    std::uint32_t exitCode = 0;      ///< 0, or the code that diskpart documents for the error that stopped the script
    std::vector<DiskpartStep> steps; ///< in order
    std::vector<std::uint32_t> cleanedNow; ///< drives whose first and last mebibyte become zero
};

/// The banner that precedes everything.
[[nodiscard]] std::string diskpartBanner(const std::string& computer);

/// Carries out a script (lines end in LF or CR LF) on the bench; `state` is changed accordingly. Commands: select disk,
/// attributes disk [set|clear readonly], automount [enable|disable|scrub], clean, rescan, rem, exit.
[[nodiscard]] DiskpartRun runDiskpartScript(const BenchDescription& bench, BenchState& state, std::string_view script);

} // namespace torvane::bench
