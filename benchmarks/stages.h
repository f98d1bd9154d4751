#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace torvane {

// One stage of a copy alone, in blocks of the copy's size, one after the other on one thread.

/// The file that holds the content of the bench's drive 1.
[[nodiscard]] std::string sourceFile(const std::string& benchFolder);

/// Seconds that a stage takes; none for a name that is none's, and when a transfer failed. As many bytes as drive 1 of
/// the bench has go through
///
///   read-drive     drive 1 itself, by the engine's own calls
///   read-file      the file that holds its content, without the bench
///   write-drive    drive 2, out of memory
///   write-file     a new file in the current folder, out of memory, without the bench
///   hash           MD5, out of memory
///   sha256         SHA-256, out of memory
[[nodiscard]] std::optional<double> secondsOfStage(std::string_view stage, const std::string& benchFolder);

} // namespace torvane
