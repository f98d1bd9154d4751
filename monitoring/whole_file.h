#pragma once

#include "monitoring/command_runner.h"

#include <windows.h>

#include <cstdint>
#include <optional>

namespace torvane {

/// The file's size in bytes; nothing when the system knows no size: not a plain file.
[[nodiscard]] std::optional<std::uint64_t> sizeOfFile(HANDLE file);

/// A zero-filled block of `size` bytes; null when there is not that much memory.
[[nodiscard]] LoadedText allocateZeroed(std::uint64_t size);

/// Reads the whole file of `size` bytes into `block`. False when less arrives, and for 4 GiB or more, which cannot be
/// asked for in one call.
[[nodiscard]] bool readWholeFile(HANDLE file, std::uint64_t size, char* block);

} // namespace torvane
