#pragma once

#include <optional>
#include <span>
#include <string>

namespace torvane::choosers {

// The system's own dialogs for choosing a folder or a file, in one place, so that tests can choose in the user's stead.
// They run on the window's thread and return when the user has chosen or cancelled.

/// The shell's folder browser in front of the window that has the keyboard. The folder's path; none when the user
/// cancelled, or chose a place that has no path.
[[nodiscard]] std::optional<std::string> folder(const char* title);

/// What an open-file dialog offers to show.
struct FileKind {
    const char* label;
    const char* pattern;
};

/// The common open-file dialog in front of the main window, for a file that exists. Its path, at most 1023 bytes; none
/// when the user cancelled. The current folder stays what it is.
[[nodiscard]] std::optional<std::string> existingFile(std::span<const FileKind> kinds);

/// The common save-file dialog in front of the main window, which offers `name`, and gives a name without an extension
/// that of `name`. The path of a file that does not exist, or that the user, asked by the system, wants to be replaced;
/// none when he cancelled. The current folder stays what it is.
[[nodiscard]] std::optional<std::string> newFile(std::span<const FileKind> kinds, const std::string& name);

} // namespace torvane::choosers
