#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace torvane {

/// What to tell the user when an image of `imageBytes` does not fit into `freeBytes` of the destination's volume. None
/// when it fits; equal is enough.
[[nodiscard]] std::optional<std::string> notEnoughSpaceText(std::int64_t imageBytes, std::int64_t freeBytes,
                                                            std::string_view folder);

/// Free bytes of the volume that holds `folder`, by the folder's first two characters (drive letter and colon). 0 when
/// the system does not tell, as for a folder without a drive letter.
[[nodiscard]] std::int64_t freeSpaceOfFolder(std::string_view folder);

} // namespace torvane
