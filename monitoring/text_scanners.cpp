#include "monitoring/text_scanners.h"

#include "monitoring/caseless_key.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace torvane {
namespace {

/// One line where it stands in the text.
struct LineSlice {
    const char* begin = nullptr;
    const char* end = nullptr;   ///< at the CR of the line's CR LF, or at the text's NUL
    bool ended = false;          ///< a CR LF follows
    bool hasStrayReturn = false; ///< a CR without LF lies within and is to be dropped
};

LineSlice sliceLine(const char* begin) {
    LineSlice line{begin, begin, false, false};
    for (const char*& at = line.end; *at != '\0'; ++at) {
        if (*at != '\r') {
            continue;
        }
        if (at[1] == '\n') {
            line.ended = true;
            break;
        }
        line.hasStrayReturn = true;
    }
    return line;
}

const char* behind(const LineSlice& line) {
    return line.end + 2;
}

/// Copies what fits and terminates it. Returns the text that is now in `out`.
std::string_view copyCut(std::string_view text, std::span<char> out) {
    if (out.empty()) {
        return {};
    }
    const std::size_t length = std::min(text.size(), out.size() - 1);
    std::copy_n(text.begin(), length, out.begin());
    out[length] = '\0';
    return {out.data(), length};
}

std::string_view copyWithoutReturns(const LineSlice& line, std::span<char> out) {
    std::size_t length = 0;
    for (const char* at = line.begin; at != line.end && length + 1 < out.size(); ++at) {
        if (*at != '\r') {
            out[length++] = *at;
        }
    }
    return copyCut({out.data(), length}, out);
}

std::string_view copyLine(const LineSlice& line, std::span<char> out) {
    return line.hasStrayReturn ? copyWithoutReturns(line, out) : copyCut({line.begin, line.end}, out);
}

void clearAndCopyLine(const LineSlice& line, std::span<char> out) {
    std::ranges::fill(out, '\0');
    copyLine(line, out);
}

/// The part of the line that a buffer of `room` bytes would hold, which is the part that is searched. A line without
/// stray returns is looked at where it stands: only the line that is found gets copied.
std::string_view visiblePart(const LineSlice& line, std::span<char> room) {
    if (line.hasStrayReturn) {
        return copyWithoutReturns(line, room);
    }
    const auto length = static_cast<std::size_t>(line.end - line.begin);
    return {line.begin, room.empty() ? 0 : std::min(length, room.size() - 1)};
}

/// Finds the key in the line numbered `firstIndex` or behind it.
int findLineFrom(const char* text, std::int64_t firstIndex, std::span<char> lineOut, const char* key) {
    const CaselessKey wanted(key);
    LineSlice line = sliceLine(text);
    for (std::int64_t index = 0; line.ended; ++index, line = sliceLine(behind(line))) {
        if (firstIndex >= 0 && index >= firstIndex && wanted.isWithin(visiblePart(line, lineOut))) {
            clearAndCopyLine(line, lineOut);
            return static_cast<int>(index);
        }
    }
    clearAndCopyLine(line, lineOut);
    return -1;
}

const char* skipBlanks(const char* at) {
    while (*at == ' ') {
        ++at;
    }
    return at;
}

const char* skipNonBlanks(const char* at) {
    while (*at != ' ' && *at != '\0') {
        ++at;
    }
    return at;
}

const char* skipWord(const char* at) {
    while (*at != ' ' && *at != '\r' && *at != '\n' && *at != '\0') {
        ++at;
    }
    return at;
}

/// Clears as many bytes as the whole line would need, then copies the word.
void clearAndCopyWord(std::string_view word, std::string_view line, std::span<char> wordOut) {
    std::ranges::fill(wordOut.first(std::min(line.size() + 1, wordOut.size())), '\0');
    copyCut(word, wordOut);
}

} // namespace

int LineCursor::next(std::span<char> lineOut) {
    const LineSlice line = sliceLine(at_);
    copyLine(line, lineOut);
    if (!line.ended) {
        return 0;
    }
    at_ = behind(line);
    return 1;
}

int PARSE_GetLine(int lineIndex, const char* text, std::span<char> lineOut) {
    LineSlice line = sliceLine(text);
    for (std::int64_t index = 0; line.ended && index != lineIndex; ++index) {
        line = sliceLine(behind(line));
    }
    clearAndCopyLine(line, lineOut);
    return line.ended ? 1 : 0;
}

int PARSE_LineContains(const char* haystack, const char* needle) {
    return CaselessKey(needle).isWithin(haystack) ? 1 : 0;
}

int PARSE_FindLine(const char* text, std::span<char> lineOut, const char* key) {
    return findLineFrom(text, 0, lineOut, key);
}

int PARSE_FindNextLine(const char* text, int afterIndex, std::span<char> lineOut, const char* key) {
    return findLineFrom(text, std::int64_t{afterIndex} + 1, lineOut, key);
}

int PARSE_GetWord(const char* line, std::span<char> wordOut, int wordIndex) {
    std::string_view word;
    bool anyWord = false;
    bool found = false;
    const char* at = skipBlanks(line);
    for (std::int64_t index = 0; *at != '\0' && !found; ++index) {
        const char* const begin = at;
        at = skipWord(at);
        word = {begin, at};
        anyWord = true;
        found = index == wordIndex;
        if (!found && *at != ' ' && *at != '\0') {
            // A CR or LF is never stepped over: there are as many words behind it as are asked for, all of them empty.
            word = {};
            found = wordIndex > index;
            break;
        }
        at = skipBlanks(at);
    }
    if (anyWord) {
        clearAndCopyWord(word, line, wordOut);
    }
    return found ? 1 : 0;
}

int PARSE_GetRestFromWord(const char* line, std::span<char> out, int wordIndex) {
    const char* at = skipBlanks(line);
    for (std::int64_t index = 0; *at != '\0'; ++index) {
        if (index == wordIndex) {
            copyCut(at, out);
            return 1;
        }
        at = skipBlanks(skipNonBlanks(at));
    }
    return 0;
}

int PARSE_CopyUntil(const char* text, std::span<char> out, char delimiter) {
    const std::string_view whole(text);
    const std::size_t length = whole.find(delimiter);
    copyCut(whole.substr(0, length), out);
    return length == std::string_view::npos ? 0 : 1;
}

std::int64_t PARSE_DigitsToInt64(const char* text) {
    constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
    std::int64_t number = 0;
    for (; *text != '\0'; ++text) {
        if (*text < '0' || *text > '9') {
            continue;
        }
        const int digit = *text - '0';
        if (number > (kLargest - digit) / 10) {
            return kLargest;
        }
        number = number * 10 + digit;
    }
    return number;
}

} // namespace torvane
