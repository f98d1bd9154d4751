#pragma once

#include <cstdint>

namespace torvane {

/// A colour as GDI keeps it: 0x00BBGGRR.
using ColourCode = std::uint32_t;

[[nodiscard]] constexpr ColourCode colour(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    return static_cast<ColourCode>(red) | static_cast<ColourCode>(green) << 8 | static_cast<ColourCode>(blue) << 16;
}

/// Background of the main window, of its health panel and of the dialogs.
inline constexpr ColourCode kDialogBackground = colour(218, 223, 234);

/// Background of the lists.
inline constexpr ColourCode kListBackground = colour(136, 196, 236);

/// A list's selected row, while the list has the keyboard and while it has not.
inline constexpr ColourCode kSelectedText = colour(255, 255, 255);
inline constexpr ColourCode kSelectedBackground = colour(0, 51, 102);
inline constexpr ColourCode kRestingSelectedBackground = colour(52, 86, 130);

} // namespace torvane
