#pragma once

#include <string_view>

namespace torvane {

/// The file as which the program leaves its manual in the current folder: a page for a browser.
inline constexpr const char* kManualFileName = "Torvane-manual.html";

/// Opens the manual, `page`, in whatever the user reads pages with, by PowerShell, and waits for that while the window
/// goes on answering. The file is written first where it is not there or says something else; where that fails, a box
/// says so. On the window's thread; `page` lives as long as the program.
void openManual(std::string_view page);

} // namespace torvane
