#pragma once

#include "tests/ui/driver/program.h"

#include <filesystem>

namespace torvane::driver {

// The system's own dialogs that a program opens for a folder or a file. Each function waits for the dialog and returns
// when it has gone.

/// Chooses the folder, which must exist and be no drive's root, in the shell's folder browser.
void chooseFolder(const Program& program, const std::filesystem::path& folder);
void cancelFolder(const Program& program);

/// Types the path into the open-file dialog and presses its button.
void chooseFile(const Program& program, const std::filesystem::path& file);
void cancelFile(const Program& program);

/// The open folder browser or open-file dialog.
[[nodiscard]] Window awaitFolderBrowser(const Program& program);
[[nodiscard]] Window awaitFileDialog(const Program& program);

} // namespace torvane::driver
