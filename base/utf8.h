#pragma once

#include <cstddef>
#include <string_view>

namespace torvane {

[[nodiscard]] constexpr bool isUtf8Continuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// The start of a text, at most `limit` bytes, and in UTF-8 never cut within a character.
[[nodiscard]] constexpr std::string_view cutAtCharacter(std::string_view text, std::size_t limit) {
    constexpr std::size_t kMostContinuations = 3; // a longer run is no UTF-8: it is cut where it is
    if (text.size() <= limit) {
        return text;
    }
    std::size_t length = limit;
    while (length > 0 && limit - length < kMostContinuations && isUtf8Continuation(text[length])) {
        --length;
    }
    return text.substr(0, isUtf8Continuation(text[length]) ? limit : length);
}

} // namespace torvane
