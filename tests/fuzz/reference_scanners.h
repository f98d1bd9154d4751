#pragma once

#include <cstddef>
#include <string>
#include <vector>

// The scanners as their description reads, byte by byte and without any regard to cost: what the fast ones must agree
// with.

namespace torvane::fuzz {

struct ReferenceLines {
    std::vector<std::string> ended; ///< every line that CR LF ends
    std::string rest;               ///< what stands behind the last CR LF
};

inline ReferenceLines referenceLines(const std::string& text) {
    ReferenceLines lines;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r') {
            lines.rest += text[i];
        } else if (i + 1 < text.size() && text[i + 1] == '\n') {
            lines.ended.push_back(lines.rest);
            lines.rest.clear();
            ++i;
        }
    }
    return lines;
}

inline char referenceUpper(char byte) {
    return byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 0x20) : byte;
}

inline bool referenceContains(const std::string& line, const std::string& key) {
    for (std::size_t start = 0; start + key.size() < line.size(); ++start) {
        std::size_t same = 0;
        while (same < key.size() && referenceUpper(line[start + same]) == referenceUpper(key[same])) {
            ++same;
        }
        if (same == key.size()) {
            return true;
        }
    }
    return false;
}

/// The index of the first line from `from` on whose first `room` bytes contain the key; -1 when none do.
inline int referenceFind(const ReferenceLines& lines, std::size_t from, const std::string& key, std::size_t room) {
    for (std::size_t i = from; i < lines.ended.size(); ++i) {
        if (referenceContains(lines.ended[i].substr(0, room), key)) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

} // namespace torvane::fuzz
