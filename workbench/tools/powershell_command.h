#pragma once

#include "workbench/description/bench_description.h"
#include "workbench/description/bench_state.h"

#include <cstdint>
#include <string>
#include <vector>

namespace torvane::bench {

/// What a run of powershell did.
struct PowershellRun {
    std::string output;         ///< bytes for standard output
    std::string errors;         ///< bytes for standard error
    std::uint32_t exitCode = 0; ///< 0 or 1
    bool opened = false;        ///< Start-Process was called ...
    std::string what;           ///< ... with this document or address
};

/// Carries out the arguments of a powershell command line: options such as "-windowstyle hidden", then either
/// "(Get-BitLockerVolume -MountPoint X).KeyProtector" or "Start-Process <what>".
[[nodiscard]] PowershellRun runPowershell(const BenchDescription& bench, const BenchState& state,
                                          const std::vector<std::string>& arguments);

/// The list that the cmdlet's key protectors show as; empty for a volume without any.
[[nodiscard]] std::string keyProtectorList(const BitLockerDescription& bitLocker);

} // namespace torvane::bench
