#pragma once

#include <string>

namespace torvane {

/// The folder that holds the running program's file, without a backslash at its end (GetModuleFileName), however long
/// its path is.
[[nodiscard]] std::wstring wideFolderOfProgram();
/// The same in the code page.
[[nodiscard]] std::string folderOfProgram();

/// The current folder, as the system spells it (GetCurrentDirectory); empty when it does not tell.
[[nodiscard]] std::wstring wideCurrentFolder();

} // namespace torvane
