#include "discovery/device_text.h"

#include "base/ascii.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace torvane {

namespace {

constexpr std::string_view kFlags = "-+ #0";
constexpr std::string_view kDigits = "0123456789";

void skipAnyOf(std::string_view& text, std::string_view characters) {
    text.remove_prefix(std::min(text.find_first_not_of(characters), text.size()));
}

void skipNumber(std::string_view& text) {
    if (text.starts_with('*')) {
        text.remove_prefix(1);
    } else {
        skipAnyOf(text, kDigits);
    }
}

// C11 7.21.6.1 and Microsoft's I64, I32, I and w. Longer ones stand before their own beginnings.
void skipLengthModifier(std::string_view& text) {
    constexpr std::array<std::string_view, 12> kModifiers = {"I64", "I32", "hh", "ll", "h", "l",
                                                             "j",   "z",   "t",  "L",  "I", "w"};
    for (const std::string_view modifier : kModifiers) {
        if (text.starts_with(modifier)) {
            text.remove_prefix(modifier.size());
            return;
        }
    }
}

// `text` begins behind the percent sign. What cannot be part of a conversion stays.
void skipConversion(std::string_view& text) {
    skipAnyOf(text, kFlags);
    skipNumber(text);
    if (text.starts_with('.')) {
        text.remove_prefix(1);
        skipNumber(text);
    }
    skipLengthModifier(text);
    if (!text.empty() && isAsciiLetter(text.front())) {
        text.remove_prefix(1);
    }
}

} // namespace

std::string_view trimBlanks(std::string_view text) {
    while (text.size() > 1 && text.front() == ' ') {
        text.remove_prefix(1);
    }
    while (text.size() > 1 && text.back() == ' ') {
        text.remove_suffix(1);
    }
    return text;
}

void swapBytePairs(std::span<char> bytes) {
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        std::swap(bytes[i], bytes[i + 1]);
    }
}

std::string expandDeviceText(std::string_view text) {
    std::string expanded;
    while (!text.empty()) {
        const std::size_t literal = std::min(text.find('%'), text.size());
        expanded.append(text.substr(0, literal));
        text.remove_prefix(literal);
        if (text.starts_with("%%")) {
            expanded.push_back('%');
            text.remove_prefix(2);
        } else if (!text.empty()) {
            text.remove_prefix(1);
            skipConversion(text);
        }
    }
    return expanded;
}

} // namespace torvane
