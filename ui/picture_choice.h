#pragma once

#include "base/bytes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace torvane {

/// A picture as it was shipped beside the program.
struct ShippedPicture {
    std::string_view name;
    std::size_t size;       ///< of the file, in bytes
    std::uint32_t checksum; ///< crc32 of the file
};

/// The screens, in dots to the inch, for which the program carries renderings of its pictures larger than the files,
/// which are for 96. In ascending order.
inline constexpr std::array kRenderingDpis{120, 144, 192};

/// Whose rendering a screen of `dpi` shows: the smallest that need not be enlarged, or the largest. None up to 96,
/// where the files are shown as they are.
[[nodiscard]] std::optional<int> renderingFor(int dpi);

/// Whose rendering a screen of `dpi` shows in the stead of the picture file `name`, whose bytes are `file`. None when
/// the file itself is to be shown: up to 96, and everywhere when it is not the one that was shipped, since whoever
/// replaced it wants to see his own. A file that is missing or damaged is not the shipped one either.
[[nodiscard]] std::optional<int> renderingInstead(std::string_view name, ByteView file,
                                                  std::span<const ShippedPicture> shipped, int dpi);

} // namespace torvane
