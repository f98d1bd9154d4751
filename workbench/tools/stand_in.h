#pragma once

#include "workbench/session/bench_folder.h"

#include <memory>
#include <string>
#include <vector>

namespace torvane::bench {

/// What every stand-in starts with: the bench that the environment names, and its own command line.
struct StandIn {
    BenchDescription bench;
    std::unique_ptr<BenchFolder> folder;
    std::vector<std::string> arguments; ///< in the ANSI code page, as the real tools print them
    std::string commandLine;            ///< UTF-8
};

/// Null, after a message on standard error, when the process is on no bench.
[[nodiscard]] std::unique_ptr<StandIn> openStandIn();

/// Writes bytes to a standard handle (STD_OUTPUT_HANDLE, STD_ERROR_HANDLE) as they are.
void print(DWORD standardHandle, const std::string& bytes);

/// Does what the description orders: waits, and prints its output in place of the tool's. True when the tool has
/// nothing left to do.
[[nodiscard]] bool obeyDescription(const StandIn& standIn, const ToolDescription& tool);

/// Prints what the tool itself has to say, unless the description's output stands in its place.
void printOwn(const ToolDescription& tool, DWORD standardHandle, const std::string& bytes);

/// The exit code that the description orders, else the tool's own.
[[nodiscard]] int exitCodeOf(const ToolDescription& tool, std::uint32_t own);

} // namespace torvane::bench
