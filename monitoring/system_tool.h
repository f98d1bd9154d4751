#pragma once

#include <string>
#include <string_view>

namespace torvane {

/// Where Windows keeps the tool that the command line names: diskpart, or powershell. Empty for any other tool, for
/// one that is named with its folder, and where Windows has none of its own: then CreateProcess searches as the
/// command line says, beside the program and in the current folder first.
///
/// A program of that name that lies there is named in one "ERROR" log row, once for each tool and place.
[[nodiscard]] std::string systemToolPath(std::string_view commandLine);

} // namespace torvane
