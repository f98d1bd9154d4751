#include "admin/bitlocker_output.h"
#include "monitoring/text_scanners.h"
#include "tests/fuzz/fuzz_input.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

using namespace torvane;
using fuzz::require;

namespace {

/// The same answer by the scanners that start over at the text's beginning for each line.
BitLockerFinding findAgain(const char* output, const BitLockerScratch& scratch) {
    constexpr const char* kKey = "RecoveryPassword";
    if (*output == '\0') {
        return BitLockerFinding::kNoOutput;
    }
    int index = PARSE_FindLine(output, scratch.line, kKey);
    if (index < 0) {
        return BitLockerFinding::kNotEncrypted;
    }
    for (; index >= 0; index = PARSE_FindNextLine(output, index, scratch.line, kKey)) {
        if (PARSE_GetWord(scratch.line.data(), scratch.word, 2) != 0) {
            return BitLockerFinding::kKeyRead;
        }
    }
    return BitLockerFinding::kLocked;
}

/// Whether the words that a record of an error is known by stand in the output, stray returns aside.
bool hasErrorMark(std::string output) {
    std::erase(output, '\r');
    constexpr std::array kMarks{"Get-BitLockerVolume :", "+ CategoryInfo", "+ FullyQualifiedErrorId"};
    return std::ranges::any_of(kMarks, [&](const char* mark) { return output.find(mark) != std::string::npos; });
}

/// As an entry would hold it.
std::string asKept(const char* word) {
    return std::string(word).substr(0, 255);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string output(bytes, bytes + size);
    std::array<char, 256> line{};
    std::array<char, 128> word{};
    const BitLockerCheck check = readKeyProtectors(output.c_str(), 'E', {line, word});

    std::array<char, 256> otherLine{};
    std::array<char, 128> otherWord{};
    const BitLockerFinding again = findAgain(output.c_str(), {otherLine, otherWord});
    const bool notTold = check.finding == BitLockerFinding::kNotTold;
    require(again == (notTold ? BitLockerFinding::kNotEncrypted : check.finding), "one pass finds what many find");
    require(notTold == !check.error.empty(), "an error is named where the volume's state was not told, and only there");
    require(!notTold || hasErrorMark(output), "only an error record leaves the volume's state untold");
    const bool read = check.finding == BitLockerFinding::kKeyRead;
    require((check.entry.hasKey == 1) == read, "the flag tells that a key was read");
    require(check.entry.recoveryPassword.view() == (read ? asKept(otherWord.data()) : std::string()),
            "the password is the word");
    const bool encrypted = read || check.finding == BitLockerFinding::kLocked;
    require(check.entry.driveLetter == (encrypted ? 'E' : '\0'), "the letter stands for an encrypted volume");
    return 0;
}
