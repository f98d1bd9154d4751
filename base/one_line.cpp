#include "base/one_line.h"

#include <algorithm>

namespace torvane {

namespace {

bool isControl(char character) {
    constexpr char kDelete = 0x7F;
    return static_cast<unsigned char>(character) < ' ' || character == kDelete;
}

void replaceAll(std::string& text, std::string_view what, char by) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at)) {
        text.replace(at, what.size(), 1, by);
    }
}

} // namespace

std::string oneLine(std::string_view text) {
    std::string line(text);
    std::ranges::replace_if(line, isControl, ' ');
    for (const std::string_view lineBreak : {"\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"}) {
        replaceAll(line, lineBreak, ' ');
    }
    return line;
}

} // namespace torvane
