#pragma once

#include <windows.h>

#include <string>

namespace torvane::bench {

// Paths of ordinary files as Windows takes them without its prefix for long ones ("\\?\"): below MAX_PATH characters,
// the terminator among them, once they are absolute. A longer one is not found (ERROR_PATH_NOT_FOUND).

/// True of a path that is too long; the thread's last error then says so.
[[nodiscard]] bool refusesLongPath(LPCWSTR path);
[[nodiscard]] bool refusesLongPath(LPCSTR path);

/// The path in absolute form, without the prefix: "C:\...", "\\server\share\...".
[[nodiscard]] std::wstring absolutePath(LPCWSTR path);

} // namespace torvane::bench
