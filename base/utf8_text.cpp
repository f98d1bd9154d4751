#include "base/utf8_text.h"

#include "base/utf8.h"

#include <cstddef>
#include <cstdint>

namespace torvane {

namespace {

constexpr char16_t kReplacement = 0xFFFD;

struct Character {
    char32_t code = 0;
    std::size_t length = 0; ///< bytes; 0: the text begins with no character
};

/// What the first byte says: how many bytes the character takes, the bits of it that stand here, and the smallest
/// character that may take so many bytes.
struct Lead {
    std::size_t length;
    char32_t bits;
    char32_t smallest;
};

Lead leadOf(std::uint8_t byte) {
    if (byte < 0x80) {
        return {1, byte, 0};
    }
    if ((byte & 0xE0U) == 0xC0) {
        return {2, byte & 0x1FU, 0x80};
    }
    if ((byte & 0xF0U) == 0xE0) {
        return {3, byte & 0x0FU, 0x800};
    }
    if ((byte & 0xF8U) == 0xF0) {
        return {4, byte & 0x07U, 0x10000};
    }
    return {0, 0, 0};
}

bool isScalarValue(char32_t code) {
    return code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

Character firstCharacter(std::string_view text) {
    const Lead lead = leadOf(static_cast<std::uint8_t>(text.front()));
    if (lead.length == 0 || lead.length > text.size()) {
        return {};
    }
    char32_t code = lead.bits;
    for (const char byte : text.substr(1, lead.length - 1)) {
        if (!isUtf8Continuation(byte)) {
            return {};
        }
        code = (code << 6U) | (static_cast<std::uint8_t>(byte) & 0x3FU);
    }
    return code >= lead.smallest && isScalarValue(code) ? Character{code, lead.length} : Character{};
}

char16_t strayByte(char byte) {
    const auto code = static_cast<std::uint8_t>(byte);
    return code < 0xA0 ? kReplacement : static_cast<char16_t>(code);
}

void append(std::u16string& units, char32_t code) {
    if (code < 0x10000) {
        units += static_cast<char16_t>(code);
        return;
    }
    units += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10U));
    units += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FFU));
}

} // namespace

std::u16string utf16FromUtf8(std::string_view text) {
    std::u16string units;
    units.reserve(text.size());
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        if (character.length == 0) {
            units += strayByte(text.front());
            text.remove_prefix(1);
        } else {
            append(units, character.code);
            text.remove_prefix(character.length);
        }
    }
    return units;
}

} // namespace torvane
