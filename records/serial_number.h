#pragma once

#include <string_view>

namespace torvane {

/// True when both texts are one serial number as different drivers and tools tell it: blanks and letters' case aside,
/// the bytes of each 16-bit word in either order (ATA tells two characters a word, high byte first), and as hexadecimal
/// digits of its bytes, as descriptors of old ATA drivers have it. A text without a character that shows is no serial
/// number, and none equals it.
[[nodiscard]] bool isSameSerialNumber(std::string_view one, std::string_view other);

} // namespace torvane
