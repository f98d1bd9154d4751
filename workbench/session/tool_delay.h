#pragma once

#include "workbench/session/bench_folder.h"

#include <string>

namespace torvane::bench {

/// Has a tool take the time that its description orders for this command line (UTF-8), with a row in the log before.
void takeTime(BenchFolder& folder, const ToolDescription& tool, const std::string& commandLine);

} // namespace torvane::bench
