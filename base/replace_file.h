#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace torvane {

/// How far a file came that was to be written whole.
enum class FileSaving : std::uint8_t {
    kDone,
    kNotMade,    ///< the new file could not be created
    kNotWritten, ///< not all of it reached the disk
    kNotPlaced,  ///< it could not be given the file's name
};

// A file is written whole or not at all: its bytes go into a new file beside it, "Config.db.new", are flushed, and that
// file takes the name in one step (MoveFileEx). A crash or a full disk at any moment leaves the old file or the new
// one, and nothing is left of a new one that failed. A path may have any length and any letters. Who holds a file for a
// moment, as a scanner does, is waited for, up to a second.

/// Replaces the file, or makes it. It keeps its attributes, such as hidden. One that is read-only, or that others have
/// open, cannot be replaced.
[[nodiscard]] FileSaving replaceFile(const char* fileName, std::span<const std::byte> bytes);

/// The same for a file of the user's choice: whatever else has a name like it stays as it is.
[[nodiscard]] FileSaving replaceForeignFile(const char* fileName, std::span<const std::byte> bytes);

/// Makes the file. One that exists stays, and counts as `kNotPlaced`.
[[nodiscard]] FileSaving makeWholeFile(const char* fileName, std::span<const std::byte> bytes);

/// Makes sure that the file's bytes are on the disk, not merely in a cache; false with the reason in GetLastError.
[[nodiscard]] bool flushFile(const char* fileName);

} // namespace torvane
