#include "workbench/devices/log_line.h"

#include "workbench/description/error_names.h"

namespace torvane::bench {
namespace {

constexpr std::string_view kDigits = "0123456789abcdef";

void appendEscaped(std::string& out, unsigned char byte) {
    if (byte == '"' || byte == '\\') {
        out += '\\';
        out += static_cast<char>(byte);
    } else if (byte < 0x20 || byte > 0x7E) {
        out += "\\u00";
        out += kDigits[byte >> 4U];
        out += kDigits[byte & 0x0FU];
    } else {
        out += static_cast<char>(byte);
    }
}

} // namespace

LogLine::LogLine(std::string_view target, std::string_view request) {
    word("target", target);
    word("request", request);
}

LogLine& LogLine::number(std::string_view key, std::uint64_t value) {
    return word(key, std::to_string(value));
}

LogLine& LogLine::word(std::string_view key, std::string_view value) {
    if (!text_.empty()) {
        text_ += ' ';
    }
    text_ += key;
    text_ += '=';
    text_ += value;
    return *this;
}

LogLine& LogLine::quoted(std::string_view key, std::string_view text) {
    std::string escaped = "\"";
    for (const char c : text) {
        appendEscaped(escaped, static_cast<unsigned char>(c));
    }
    escaped += '"';
    return word(key, escaped);
}

LogLine& LogLine::hex(std::string_view key, std::span<const std::uint8_t> bytes) {
    std::string digits;
    digits.reserve(2 * bytes.size());
    for (const std::uint8_t byte : bytes) {
        digits += kDigits[byte >> 4U];
        digits += kDigits[byte & 0x0FU];
    }
    return word(key, digits);
}

LogLine& LogLine::result(std::uint32_t error) {
    return word("result", error == 0 ? "ok" : errorName(error));
}

} // namespace torvane::bench
