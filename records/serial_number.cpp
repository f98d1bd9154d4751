#include "records/serial_number.h"

#include "base/ascii.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace torvane {

namespace {

constexpr bool shows(char character) {
    return character != ' ' && isPrintableAscii(character);
}

// NUL bytes fill a field as blanks do.
std::string withoutBlanks(std::string_view text) {
    std::string bare = lowerAsciiText(text);
    std::erase_if(bare, [](char character) { return character == ' ' || character == '\0'; });
    return bare;
}

std::string withSwappedPairs(std::string_view text) {
    std::string swapped(text);
    for (std::size_t i = 0; i + 1 < swapped.size(); i += 2) {
        std::swap(swapped[i], swapped[i + 1]);
    }
    return swapped;
}

// The text that the digits spell; none unless they spell printable characters alone.
std::optional<std::string> fromHexDigits(std::string_view digits) {
    if (digits.empty() || digits.size() % 2 != 0) {
        return std::nullopt;
    }
    std::string text(digits.size() / 2, ' ');
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int high = hexDigitValue(digits[2 * i]);
        const int low = hexDigitValue(digits[2 * i + 1]);
        const auto byte = static_cast<char>(high * 16 + low);
        if (high < 0 || low < 0 || !isPrintableAscii(byte)) {
            return std::nullopt;
        }
        text[i] = byte;
    }
    return text;
}

// All ways in which the number may have been meant.
std::vector<std::string> readingsOf(std::string_view text) {
    std::vector<std::string> readings{withoutBlanks(text), withoutBlanks(withSwappedPairs(text))};
    if (const auto spelt = fromHexDigits(withoutBlanks(text))) {
        readings.push_back(withoutBlanks(*spelt));
        readings.push_back(withoutBlanks(withSwappedPairs(*spelt)));
    }
    return readings;
}

} // namespace

bool isSameSerialNumber(std::string_view one, std::string_view other) {
    if (std::ranges::none_of(one, shows) || std::ranges::none_of(other, shows)) {
        return false;
    }
    // One of the two is taken as it stands: two numbers that are only alike when both are turned are not the same.
    const auto isReadingOf = [](std::string_view told, std::string_view asItStands) {
        const std::vector<std::string> readings = readingsOf(told);
        return std::ranges::find(readings, withoutBlanks(asItStands)) != readings.end();
    };
    return isReadingOf(one, other) || isReadingOf(other, one);
}

} // namespace torvane
