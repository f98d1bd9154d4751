#include "monitoring/text_scanners.h"
#include "tests/fuzz/fuzz_input.h"

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

void scanLines(const std::string& text, std::size_t size, const std::string& key) {
    std::vector<char> line = buffer(size);
    LineCursor cursor(text.c_str());
    for (int index = 0; index < 8; ++index) {
        std::vector<char> again = buffer(size);
        const int found = cursor.next(line);
        require(PARSE_GetLine(index, text.c_str(), again) == found, "the cursor gives what PARSE_GetLine gives");
        require(fuzz::isTerminated(again), "a line is terminated");
        require(found == 0 || std::strcmp(line.data(), again.data()) == 0, "both give the same line");
        if (found == 0) {
            break;
        }
    }
    int index = PARSE_FindLine(text.c_str(), line, key.c_str());
    while (index >= 0) {
        require(PARSE_LineContains(line.data(), key.c_str()) == 1, "a found line contains the key");
        const int next = PARSE_FindNextLine(text.c_str(), index, line, key.c_str());
        require(next == -1 || next > index, "the next line lies behind");
        index = next;
    }
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
    const std::string key = input.ConsumeRandomLengthString(12);
    const std::string text = input.ConsumeRemainingBytesAsString();
    scanLines(text, bufferSize, key);
    scanWords(text, bufferSize, wordIndex, delimiter);
    return 0;
}
