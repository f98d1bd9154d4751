#include "reports/windows_1252.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace torvane {

namespace {

// The characters of bytes 0x80 to 0x9F (Unicode's mapping table CP1252.TXT); 0 where the code page has none. Every
// other byte is the character of its own number.
constexpr std::size_t kSpecialBytes = 32;
constexpr std::array<char16_t, kSpecialBytes> kSpecial = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

constexpr char kSubstitute = '?';

char byteOf(char16_t character) {
    if ((character >= 0x20 && character < 0x7F) || (character >= 0xA0 && character <= 0xFF)) {
        return static_cast<char>(character);
    }
    const auto found = std::find(kSpecial.begin(), kSpecial.end(), character);
    if (character == 0 || found == kSpecial.end()) {
        return kSubstitute;
    }
    return static_cast<char>(0x80 + (found - kSpecial.begin()));
}

bool isHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

bool isLowSurrogate(char16_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

} // namespace

std::string toWindows1252(std::u16string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        bytes += byteOf(text[i]);
        // Two units that make one character are one '?'.
        if (isHighSurrogate(text[i]) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
            ++i;
        }
    }
    return bytes;
}

} // namespace torvane
