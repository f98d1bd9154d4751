#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace torvane {

/// Releases a block of GlobalAlloc.
struct GlobalFreeDeleter {
    void operator()(char* block) const { GlobalFree(block); }
};

/// A block that holds a whole file, with zero bytes behind the file's own.
using LoadedText = std::unique_ptr<char[], GlobalFreeDeleter>;

/// The file's size in bytes; nothing for what is no file of a disk (GetFileType): the system tells a size of zero for a
/// pipe, and reading one waits until somebody writes to it.
[[nodiscard]] std::optional<std::uint64_t> sizeOfFile(HANDLE file);

/// A zero-filled block of `size` bytes; null when there is not that much memory.
[[nodiscard]] LoadedText allocateZeroed(std::uint64_t size);

/// Reads the whole file of `size` bytes into `block`. False when less arrives, and for 4 GiB or more, which cannot be
/// asked for in one call.
[[nodiscard]] bool readWholeFile(HANDLE file, std::uint64_t size, char* block);

/// The file's bytes. None when there is no such file, when it cannot be read, and when it has more than `mostBytes`.
/// Others may read it meanwhile. The path may be of any length.
[[nodiscard]] std::optional<std::string> readFileUpTo(std::string_view path, std::uint64_t mostBytes);

/// Makes the file anew with `text` as it is: lines end in a bare line feed. False, with the reason in GetLastError,
/// when not all of it could be written. The path may be of any length.
[[nodiscard]] bool writeWholeFile(std::string_view fileName, std::string_view text);

/// False for a folder of that name. The path may be of any length.
[[nodiscard]] bool isFile(std::string_view path);

} // namespace torvane
