#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace torvane {

/// The volume that an image goes to.
struct DestinationVolume {
    bool isThere = true;                   ///< false for a letter that nothing has
    std::optional<std::int64_t> freeBytes; ///< none when the system does not tell
    std::string fileSystem;                ///< "NTFS", "FAT32", "exFAT"; empty when the system does not tell
};

/// What to tell the user when an image of `imageBytes` does not fit into `freeBytes` of the destination's volume. None
/// when it fits; equal is enough.
[[nodiscard]] std::optional<std::string> notEnoughSpaceText(std::int64_t imageBytes, std::int64_t freeBytes,
                                                            std::string_view folder);

/// What to ask the user when the volume's file system ends files below `imageBytes`: FAT and FAT32 do at 4 GiB less one
/// byte. None where the image has room, and where the file system is not told.
[[nodiscard]] std::optional<std::string> fileTooLargeText(std::int64_t imageBytes, std::string_view fileSystem,
                                                          std::string_view folder);

/// What to tell the user of a folder whose letter nothing has.
[[nodiscard]] std::string notReachedText(std::string_view folder);

} // namespace torvane
