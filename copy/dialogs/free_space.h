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

} // namespace torvane
