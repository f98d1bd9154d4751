#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace torvane {

struct DriveRecord;

/// What is known of a volume on a drive.
struct DriveVolume {
    char letter = 0;
    std::string label;
    std::string fileSystem;             ///< empty: the volume does not tell; it may be locked, or not formatted
    std::optional<std::uint64_t> bytes; ///< as its file system tells
    std::optional<std::uint64_t> freeBytes;
};

/// What the last BitLocker check of the drive found of the volume, in words.
[[nodiscard]] std::string_view bitLockerText(const DriveRecord& drive, char letter);

} // namespace torvane
