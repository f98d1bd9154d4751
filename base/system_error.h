#pragma once

#include <windows.h>

#include <string>

namespace torvane {

/// What the system says of one of its error codes (GetLastError), in one line, with the number behind it:
/// "Access denied. (error 5)". Where the system has no words for it: "error 5".
[[nodiscard]] std::string systemErrorText(DWORD error);

} // namespace torvane
