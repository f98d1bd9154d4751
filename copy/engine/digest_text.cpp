#include "copy/engine/digest_text.h"

#include "base/ascii.h"
#include "base/format.h"

#include <cstddef>

namespace torvane {

namespace {

bool standsBetweenDigits(char letter) {
    return letter == ' ' || letter == '\t' || letter == '\r' || letter == '\n' || letter == ':';
}

} // namespace

std::string hexText(std::span<const std::uint8_t> digest) {
    std::string text;
    text.reserve(2 * digest.size());
    for (const std::uint8_t byte : digest) {
        text += formatText("%02x", byte);
    }
    return text;
}

DigestReading readDigest(std::string_view text, std::span<std::uint8_t> digest) {
    std::size_t digits = 0;
    bool colons = false;
    for (const char letter : text) {
        const int value = hexDigitValue(letter);
        colons = colons || letter == ':';
        if (value < 0 && !standsBetweenDigits(letter)) {
            return DigestReading::kOtherLetter;
        }
        if (value < 0) {
            continue;
        }
        if (digits < 2 * digest.size()) {
            std::uint8_t& byte = digest[digits / 2];
            byte = static_cast<std::uint8_t>(digits % 2 == 0 ? value << 4 : byte | value);
        }
        ++digits;
    }
    if (digits == 0 && !colons) {
        return DigestReading::kNothing;
    }
    return digits == 2 * digest.size() ? DigestReading::kRead : DigestReading::kOtherLength;
}

} // namespace torvane
