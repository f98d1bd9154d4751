#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace torvane {

// Of ASCII alone: every other character, also a byte of UTF-8 or of a code page, stays as it is.

template <typename Character>
[[nodiscard]] constexpr Character lowerAscii(Character character) {
    return character >= 'A' && character <= 'Z' ? static_cast<Character>(character - 'A' + 'a') : character;
}

template <typename Character>
[[nodiscard]] constexpr Character upperAscii(Character character) {
    return character >= 'a' && character <= 'z' ? static_cast<Character>(character - 'a' + 'A') : character;
}

template <typename Character>
[[nodiscard]] constexpr bool isAsciiLetter(Character character) {
    return upperAscii(character) >= 'A' && upperAscii(character) <= 'Z';
}

/// The value of a hexadecimal digit in either case, 0 to 15; negative for every other character.
[[nodiscard]] constexpr int hexDigitValue(char character) {
    if (character >= '0' && character <= '9') {
        return character - '0';
    }
    const char lower = lowerAscii(character);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// A string or view of characters, in lower case.
template <typename Text>
[[nodiscard]] std::basic_string<typename Text::value_type> lowerAsciiText(const Text& text) {
    std::basic_string<typename Text::value_type> lower(text);
    std::ranges::transform(lower, lower.begin(), lowerAscii<typename Text::value_type>);
    return lower;
}

/// The text without the blanks (0x20) around it: empty when it is nothing else.
[[nodiscard]] constexpr std::string_view withoutBlanksAround(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// True for blank (0x20) to tilde (0x7E).
[[nodiscard]] constexpr bool isPrintableAscii(char character) {
    return character >= 0x20 && character <= 0x7E;
}

/// True when every character is printable ASCII; true for an empty text.
[[nodiscard]] constexpr bool isPrintableAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char character) { return isPrintableAscii(character); });
}

/// The text with '?' for every character that is not ASCII.
[[nodiscard]] inline std::string asciiText(std::wstring_view text) {
    std::string ascii(text.size(), '?');
    std::ranges::transform(text, ascii.begin(),
                           [](wchar_t character) { return character < 0x80 ? static_cast<char>(character) : '?'; });
    return ascii;
}

} // namespace torvane
