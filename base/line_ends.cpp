#include "base/line_ends.h"

namespace torvane {

std::string withWindowsLineEnds(std::string_view text) {
    std::string lines;
    lines.reserve(text.size());
    char before = 0;
    for (const char character : text) {
        if (character == '\n' && before != '\r') {
            lines += '\r';
        }
        lines += character;
        before = character;
    }
    return lines;
}

} // namespace torvane
