#pragma once

#include <string>

namespace torvane {

/// The folder that holds the running program's file, without a backslash at its end (GetModuleFileName).
[[nodiscard]] std::string folderOfProgram();

} // namespace torvane
