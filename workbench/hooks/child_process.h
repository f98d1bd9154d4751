#pragma once

#include "workbench/description/bench_description.h"
#include "workbench/devices/device_path.h"

#include <windows.h>

#include <filesystem>
#include <string>
#include <vector>

namespace torvane::bench {

/// Names the bench's folder to every process on it.
inline constexpr const wchar_t* kBenchVariable = L"TORVANE_BENCH";

/// Loads the library at `dll` into a process that was created suspended and has not run yet. Returns a Win32 error,
/// 0 for success. The bench is opened by the library itself, from the environment variable.
[[nodiscard]] DWORD loadIntoProcess(HANDLE process, const std::filesystem::path& dll);

/// The folder that holds the module with this code.
[[nodiscard]] std::filesystem::path ownFolder();

/// The program of a stand-in.
[[nodiscard]] std::filesystem::path standInPath(Tool tool);

/// An environment block of the caller's with the bench's variable added, in UTF-16. `block` is in UTF-16 or in the ANSI
/// code page.
[[nodiscard]] std::vector<wchar_t> environmentWithBench(const void* block, bool isUnicode, const std::wstring& folder);

} // namespace torvane::bench
