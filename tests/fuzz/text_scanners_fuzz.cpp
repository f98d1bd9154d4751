#include "monitoring/text_scanners.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/reference_scanners.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fuzzer/FuzzedDataProvider.h>
#include <string>
#include <vector>

using namespace torvane;
using fuzz::require;

namespace {

// Exactly as large as the scanner is told, so that one byte too many is seen.
std::vector<char> buffer(std::size_t size) {
    return std::vector<char>(size, '\xEE');
}

// Without bytes behind a NUL, which no scanner sees.
std::string upToNul(const std::string& text) {
    return text.substr(0, text.find('\0'));
}

void getLines(const std::string& text, const fuzz::ReferenceLines& expected, std::size_t size) {
    LineCursor cursor(text.c_str());
    for (std::size_t index = 0; index < 8; ++index) {
        const bool exists = index < expected.ended.size();
        const std::string& wanted = exists ? expected.ended[index] : expected.rest;
        std::vector<char> line = buffer(size);
        require(PARSE_GetLine(static_cast<int>(index), text.c_str(), line) == (exists ? 1 : 0), "lines are counted");
        require(fuzz::isTerminated(line), "a line is terminated");
        require(line.data() == wanted.substr(0, size - 1), "a line is what stands between two CR LF");
        std::vector<char> again = buffer(size);
        if (index <= expected.ended.size()) {
            require(cursor.next(again) == (exists ? 1 : 0), "the cursor counts the same");
            require(std::strcmp(line.data(), again.data()) == 0, "the cursor gives the same");
        }
    }
}

void findLines(const std::string& text, const fuzz::ReferenceLines& expected, std::size_t size,
               const std::string& key) {
    std::vector<char> line = buffer(size);
    int index = PARSE_FindLine(text.c_str(), line, key.c_str());
    require(index == fuzz::referenceFind(expected, 0, key, size - 1), "the first line with the key is found");
    while (index >= 0) {
        require(PARSE_LineContains(line.data(), key.c_str()) == 1, "a found line contains the key");
        const int next = PARSE_FindNextLine(text.c_str(), index, line, key.c_str());
        require(next == fuzz::referenceFind(expected, static_cast<std::size_t>(index) + 1, key, size - 1),
                "the next line with the key is found");
        index = next;
    }
}

void scanLines(const std::string& text, std::size_t size, const std::string& key) {
    const fuzz::ReferenceLines expected = fuzz::referenceLines(text);
    getLines(text, expected, size);
    findLines(text, expected, size, key);
    require((PARSE_LineContains(text.c_str(), key.c_str()) == 1) == fuzz::referenceContains(text, key),
            "a key is found where it stands");
}

void scanWords(const std::string& line, std::size_t size, int wordIndex, char delimiter) {
    std::vector<char> word = buffer(size);
    if (PARSE_GetWord(line.c_str(), word, wordIndex) == 1) {
        require(fuzz::isTerminated(word), "a word is terminated");
        require(std::strchr(word.data(), '\n') == nullptr, "a word holds no line end");
    }
    std::vector<char> rest = buffer(size);
    if (PARSE_GetRestFromWord(line.c_str(), rest, wordIndex) == 1) {
        require(fuzz::isTerminated(rest), "the rest is terminated");
    }
    std::vector<char> copy = buffer(size);
    PARSE_CopyUntil(line.c_str(), copy, delimiter);
    require(fuzz::isTerminated(copy), "a copy is terminated");
    require(PARSE_DigitsToInt64(line.c_str()) >= 0, "digits make no negative number");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider input(bytes, size);
    const auto bufferSize = input.ConsumeIntegralInRange<std::size_t>(1, 64);
    const auto wordIndex = input.ConsumeIntegralInRange<int>(-2, 12);
    const char delimiter = input.ConsumeIntegral<char>();
    const std::string key = upToNul(input.ConsumeRandomLengthString(12));
    const std::string text = upToNul(input.ConsumeRemainingBytesAsString());
    scanLines(text, bufferSize, key);
    scanWords(text, bufferSize, wordIndex, delimiter);
    return 0;
}
