#include "monitoring/text_scanners.h"

#include "tests/unit/huge_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {
namespace {

constexpr std::size_t kRoom = 64;

/// A caller's buffer that is full of a byte no scanner writes, so that a missing clear or terminator shows.
struct Buffer {
    std::array<char, kRoom> bytes;

    Buffer() { bytes.fill('\x7f'); }
    operator std::span<char>() { return bytes; }

    [[nodiscard]] std::string text() const { return std::string(bytes.data(), strnlen(bytes.data(), bytes.size())); }
    [[nodiscard]] bool untouched() const {
        return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte == '\x7f'; });
    }
    [[nodiscard]] bool isZeroFrom(std::size_t index) const {
        return std::all_of(bytes.begin() + static_cast<std::ptrdiff_t>(index), bytes.end(),
                           [](char byte) { return byte == '\0'; });
    }
};

// --- PARSE_GetLine

TEST(GetLine, ReturnsTheLinesInOrderWithoutTheirCrLf) {
    const char* const text = "first\r\nsecond line\r\n\r\nfourth\r\n";
    const std::array<const char*, 4> expected{"first", "second line", "", "fourth"};
    for (int i = 0; i < 4; ++i) {
        Buffer line;
        EXPECT_EQ(PARSE_GetLine(i, text, line), 1) << i;
        EXPECT_EQ(line.text(), expected.at(static_cast<std::size_t>(i)));
    }
    Buffer line;
    EXPECT_EQ(PARSE_GetLine(4, text, line), 0);
    EXPECT_EQ(line.text(), "");
}

TEST(GetLine, NeverReturnsALastLineWithoutCrLfButLeavesItsBytes) {
    Buffer line;
    EXPECT_EQ(PARSE_GetLine(0, "a\r\nb", line), 1);
    EXPECT_EQ(line.text(), "a");
    EXPECT_EQ(PARSE_GetLine(1, "a\r\nb", line), 0);
    EXPECT_EQ(line.text(), "b");
    EXPECT_EQ(PARSE_GetLine(7, "a\r\nb", line), 0);
    EXPECT_EQ(line.text(), "b");
}

TEST(GetLine, CopiesALoneLineFeedLikeAnyOtherByte) {
    Buffer line;
    EXPECT_EQ(PARSE_GetLine(0, "a\nb\r\n", line), 1);
    EXPECT_EQ(line.text(), "a\nb");
    EXPECT_EQ(PARSE_GetLine(0, "\n\n", line), 0);
    EXPECT_EQ(line.text(), "\n\n");
}

TEST(GetLine, DropsACarriageReturnThatNoLineFeedFollows) {
    Buffer line;
    EXPECT_EQ(PARSE_GetLine(0, "50%\r75%\r100%\r\n", line), 1);
    EXPECT_EQ(line.text(), "50%75%100%");
    EXPECT_EQ(PARSE_GetLine(0, "a\r\r\nb\r\n", line), 1) << "the second CR belongs to the line's end";
    EXPECT_EQ(line.text(), "a");
    EXPECT_EQ(PARSE_GetLine(1, "a\r\r\nb\r\n", line), 1);
    EXPECT_EQ(line.text(), "b");
    EXPECT_EQ(PARSE_GetLine(0, "a\r", line), 0) << "a CR as the text's last byte";
    EXPECT_EQ(line.text(), "a");
}

TEST(GetLine, ClearsTheWholeBufferForEveryLine) {
    Buffer line;
    EXPECT_EQ(PARSE_GetLine(1, "a long first line\r\nb\r\n", line), 1);
    EXPECT_EQ(line.text(), "b");
    EXPECT_TRUE(line.isZeroFrom(1));
    EXPECT_EQ(PARSE_GetLine(0, "", line), 0);
    EXPECT_TRUE(line.isZeroFrom(0));
}

TEST(GetLine, CutsALineAtTheBufferAndStillCountsIt) {
    const std::string text = std::string(1000, 'x') + "\r\nnext\r\n";
    Buffer line;
    EXPECT_EQ(PARSE_GetLine(0, text.c_str(), line), 1);
    EXPECT_EQ(line.text(), std::string(kRoom - 1, 'x'));
    EXPECT_EQ(line.bytes.back(), '\0');
    EXPECT_EQ(PARSE_GetLine(1, text.c_str(), line), 1);
    EXPECT_EQ(line.text(), "next");

    const std::string withReturns = "a\r" + std::string(1000, 'x') + "\r\n";
    EXPECT_EQ(PARSE_GetLine(0, withReturns.c_str(), line), 1);
    EXPECT_EQ(line.text(), "a" + std::string(kRoom - 2, 'x'));
}

TEST(GetLine, ALineThatFillsTheBufferExactlyIsWhole) {
    const std::string text = std::string(kRoom - 1, 'x') + "\r\n";
    Buffer line;
    EXPECT_EQ(PARSE_GetLine(0, text.c_str(), line), 1);
    EXPECT_EQ(line.text(), std::string(kRoom - 1, 'x'));
}

TEST(GetLine, MatchesNoIndexBelowZero) {
    Buffer line;
    EXPECT_EQ(PARSE_GetLine(-1, "a\r\nb\r\nrest", line), 0);
    EXPECT_EQ(line.text(), "rest");
    EXPECT_EQ(PARSE_GetLine(std::numeric_limits<int>::min(), "a\r\n", line), 0);
}

TEST(GetLine, WritesNothingIntoABufferWithoutRoom) {
    std::array<char, 1> guard{'g'};
    EXPECT_EQ(PARSE_GetLine(0, "a\r\nb", std::span<char>(guard).first(0)), 1);
    EXPECT_EQ(PARSE_GetLine(0, "a\rb\r\n", std::span<char>(guard).first(0)), 1);
    EXPECT_EQ(guard[0], 'g');
    EXPECT_EQ(PARSE_GetLine(0, "a\r\nb", guard), 1);
    EXPECT_EQ(guard[0], '\0');
}

TEST(GetLine, TheTextEndsAtItsFirstNul) {
    const char text[] = "a\r\nb\0c\r\n";
    Buffer line;
    EXPECT_EQ(PARSE_GetLine(1, text, line), 0);
    EXPECT_EQ(line.text(), "b");
}

// --- LineCursor

std::vector<std::string> allLines(const char* text) {
    std::vector<std::string> lines;
    LineCursor cursor(text);
    Buffer line;
    while (cursor.next(line)) {
        lines.push_back(line.text());
    }
    return lines;
}

TEST(LineCursorTest, GivesWhatGetLineGives) {
    for (const char* const text : {"", "x", "a\r\n", "a\r\nb", "\r\n\r\n", "a\rb\nc\r\r\nd\r\n", "a\n\r\n\r"}) {
        const std::vector<std::string> lines = allLines(text);
        Buffer line;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            EXPECT_EQ(PARSE_GetLine(static_cast<int>(i), text, line), 1) << text;
            EXPECT_EQ(line.text(), lines[i]) << text;
        }
        EXPECT_EQ(PARSE_GetLine(static_cast<int>(lines.size()), text, line), 0) << text;
    }
}

TEST(LineCursorTest, StaysAtTheUnterminatedRest) {
    LineCursor cursor("a\r\nrest");
    Buffer line;
    EXPECT_EQ(cursor.next(line), 1);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(cursor.next(line), 0);
        EXPECT_EQ(line.text(), "rest");
    }
}

// --- PARSE_LineContains

TEST(LineContains, StopsOneShortOfTheLinesEnd) {
    EXPECT_EQ(PARSE_LineContains("ABCD", "cd"), 0) << "at the very end";
    EXPECT_EQ(PARSE_LineContains("ABCDE", "cd"), 1);
    EXPECT_EQ(PARSE_LineContains("AB", "ab"), 0) << "as long as the line";
    EXPECT_EQ(PARSE_LineContains("A", "ab"), 0) << "longer than the line";
    EXPECT_EQ(PARSE_LineContains("ab-ab", "AB"), 1) << "not only at the end";
    EXPECT_EQ(PARSE_LineContains("ab ", "AB"), 1) << "at the start, one byte behind it";
}

TEST(LineContains, IgnoresTheCaseOfAsciiLettersOnly) {
    EXPECT_EQ(PARSE_LineContains("read smart DATA failed: x", "Read SMART Data failed"), 1);
    EXPECT_EQ(PARSE_LineContains("a[b", "A{"), 0) << "0x5B and 0x7B differ by the case bit and are no letters";
    EXPECT_EQ(PARSE_LineContains("a@b", "A`"), 0);
    EXPECT_EQ(PARSE_LineContains("\xE4x", "\xC4"), 0) << "bytes above 0x7F stay themselves";
    EXPECT_EQ(PARSE_LineContains("\xE4x", "\xE4"), 1);
}

TEST(LineContains, AnEmptyKeyIsWithinEveryLineButTheEmptyOne) {
    EXPECT_EQ(PARSE_LineContains("", ""), 0);
    EXPECT_EQ(PARSE_LineContains("x", ""), 1);
}

TEST(LineContains, AgreesWithTheDefinitionOnManySmallTexts) {
    // All texts of up to six letters from a small alphabet, against all keys of up to three: the skip table may never
    // jump over a match.
    constexpr std::string_view kAlphabet = "aAb";
    const auto textOf = [&](std::size_t number, std::size_t length) {
        std::string text;
        for (std::size_t i = 0; i < length; ++i, number /= kAlphabet.size()) {
            text += kAlphabet[number % kAlphabet.size()];
        }
        return text;
    };
    const auto count = [&](std::size_t length) {
        std::size_t texts = 1;
        for (std::size_t i = 0; i < length; ++i) {
            texts *= kAlphabet.size();
        }
        return texts;
    };
    const auto upper = [](std::string text) {
        std::replace(text.begin(), text.end(), 'a', 'A');
        std::replace(text.begin(), text.end(), 'b', 'B');
        return text;
    };
    for (std::size_t hayLength = 0; hayLength <= 6; ++hayLength) {
        for (std::size_t hayNumber = 0; hayNumber < count(hayLength); ++hayNumber) {
            const std::string hay = textOf(hayNumber, hayLength);
            for (std::size_t keyLength = 0; keyLength <= 3; ++keyLength) {
                for (std::size_t keyNumber = 0; keyNumber < count(keyLength); ++keyNumber) {
                    const std::string key = textOf(keyNumber, keyLength);
                    int expected = 0;
                    for (std::size_t i = 0; i + key.size() < hay.size(); ++i) {
                        expected |= upper(hay).compare(i, key.size(), upper(key)) == 0 ? 1 : 0;
                    }
                    ASSERT_EQ(PARSE_LineContains(hay.c_str(), key.c_str()), expected) << hay << " / " << key;
                }
            }
        }
    }
}

// --- PARSE_FindLine, PARSE_FindNextLine

constexpr const char* kReport = "Device Model:     TORVANE 1\r\n"
                                "  9 Power_On_Hours  8123 h\r\n"
                                "error log: none\r\n"
                                "Error: UNC at 1\r\n"
                                "power_on_hours again\r\n"
                                "no end of line: Error: UNC at 2";

TEST(FindLine, GivesTheFirstLinesIndexAndLeavesTheLine) {
    Buffer line;
    EXPECT_EQ(PARSE_FindLine(kReport, line, "Device Model:"), 0);
    EXPECT_EQ(line.text(), "Device Model:     TORVANE 1");
    EXPECT_EQ(PARSE_FindLine(kReport, line, "POWER_ON_HOURS"), 1);
    EXPECT_EQ(line.text(), "  9 Power_On_Hours  8123 h");
    EXPECT_TRUE(line.isZeroFrom(line.text().size()));
}

TEST(FindLine, GivesMinusOneWhenNoLineContainsTheKey) {
    Buffer line;
    EXPECT_EQ(PARSE_FindLine(kReport, line, "Temperature"), -1);
    EXPECT_EQ(line.text(), "no end of line: Error: UNC at 2") << "what the last try for a line left";
    EXPECT_EQ(PARSE_FindLine("", line, "x"), -1);
    EXPECT_EQ(line.text(), "");
}

TEST(FindLine, DoesNotSeeAKeyThatEndsItsLine) {
    Buffer line;
    EXPECT_EQ(PARSE_FindLine("the key\r\nthe key \r\n", line, "key"), 1);
}

TEST(FindLine, DoesNotSeeTheUnterminatedLastLine) {
    Buffer line;
    EXPECT_EQ(PARSE_FindLine("x\r\nkey at the end", line, "key"), -1);
}

TEST(FindLine, SeesAKeyAcrossADroppedCarriageReturn) {
    Buffer line;
    EXPECT_EQ(PARSE_FindLine("Power_On\r_Hours 12\r\n", line, "Power_On_Hours"), 0);
    EXPECT_EQ(line.text(), "Power_On_Hours 12");
}

TEST(FindLine, SearchesWhatFitsIntoTheBuffer) {
    // "key" is followed by one byte that fits: found; with that byte cut off it ends the line: not found.
    const std::string fits = std::string(kRoom - 5, 'x') + "keyzz\r\n";
    const std::string cut = std::string(kRoom - 4, 'x') + "keyzz\r\n";
    Buffer line;
    EXPECT_EQ(PARSE_FindLine(fits.c_str(), line, "key"), 0);
    EXPECT_EQ(line.text(), std::string(kRoom - 5, 'x') + "keyz");
    EXPECT_EQ(PARSE_FindLine(cut.c_str(), line, "key"), -1);
    EXPECT_EQ(PARSE_FindLine(fits.c_str(), std::span<char>(line.bytes).first(0), "key"), -1);
}

TEST(FindNextLine, StartsAtTheLineBehindTheGivenOne) {
    Buffer line;
    EXPECT_EQ(PARSE_FindNextLine(kReport, 0, line, "Power_On_Hours"), 1);
    EXPECT_EQ(PARSE_FindNextLine(kReport, 1, line, "Power_On_Hours"), 4);
    EXPECT_EQ(line.text(), "power_on_hours again");
    EXPECT_EQ(PARSE_FindNextLine(kReport, 4, line, "Power_On_Hours"), -1);
    EXPECT_EQ(PARSE_FindNextLine(kReport, 1000, line, "Power_On_Hours"), -1);
}

TEST(FindNextLine, BoundsItsIndex) {
    Buffer line;
    EXPECT_EQ(PARSE_FindNextLine(kReport, -1, line, "Device Model:"), 0);
    EXPECT_EQ(PARSE_FindNextLine(kReport, -2, line, "Device Model:"), -1);
    EXPECT_EQ(PARSE_FindNextLine(kReport, std::numeric_limits<int>::max(), line, "Device Model:"), -1);
    EXPECT_EQ(PARSE_FindNextLine(kReport, std::numeric_limits<int>::min(), line, "Device Model:"), -1);
}

// --- PARSE_GetWord

constexpr const char* kAttribute = "  9 Power_On_Hours          -O--CK   091   091   000    -    8123 (42 22 0)";

std::string wordOf(const char* line, int index) {
    Buffer word;
    return PARSE_GetWord(line, word, index) == 1 ? word.text() : "(none)";
}

TEST(GetWord, CountsFromZeroOverRunsOfBlanks) {
    EXPECT_EQ(wordOf(kAttribute, 0), "9");
    EXPECT_EQ(wordOf(kAttribute, 1), "Power_On_Hours");
    EXPECT_EQ(wordOf(kAttribute, 7), "8123");
    EXPECT_EQ(wordOf(kAttribute, 10), "0)");
    EXPECT_EQ(wordOf(kAttribute, 11), "(none)");
}

TEST(GetWord, SeparatesAtBlanksOnly) {
    EXPECT_EQ(wordOf("a\tb c", 0), "a\tb");
}

TEST(GetWord, FindsNothingInALineWithoutWords) {
    Buffer word;
    EXPECT_EQ(PARSE_GetWord("", word, 0), 0);
    EXPECT_EQ(PARSE_GetWord("    ", word, 0), 0);
    EXPECT_TRUE(word.untouched());
}

TEST(GetWord, LeavesTheLastWordWhenThereAreTooFew) {
    Buffer word;
    EXPECT_EQ(PARSE_GetWord("one two", word, 2), 0);
    EXPECT_EQ(word.text(), "two");
    EXPECT_EQ(PARSE_GetWord("one two   ", word, 2), 0);
    EXPECT_EQ(word.text(), "two");
}

TEST(GetWord, ClearsAsManyBytesAsTheLineNeeds) {
    Buffer word;
    EXPECT_EQ(PARSE_GetWord("ab cdef", word, 0), 1);
    EXPECT_EQ(std::string_view(word.bytes.data(), 9), std::string_view("ab\0\0\0\0\0\0\x7f", 9));
}

TEST(GetWord, EndsAtCarriageReturnAndLineFeedAndHasOnlyEmptyWordsBehindThem) {
    EXPECT_EQ(wordOf("one two\r\nthree", 1), "two");
    EXPECT_EQ(wordOf("one two\r\nthree", 2), "");
    EXPECT_EQ(wordOf("one\nthree", 0), "one");
    EXPECT_EQ(wordOf("one\nthree", 1000), "");
    EXPECT_EQ(wordOf("\nthree", 0), "");
    EXPECT_EQ(wordOf("one \nthree", 1), "");
    EXPECT_EQ(wordOf("one \nthree", -1), "(none)");
    EXPECT_EQ(wordOf("one\n", std::numeric_limits<int>::max()), "");
}

TEST(GetWord, MatchesNoIndexBelowZero) {
    EXPECT_EQ(wordOf("one two", -1), "(none)");
    EXPECT_EQ(wordOf("one two", std::numeric_limits<int>::min()), "(none)");
}

TEST(GetWord, CutsAWordAtTheBuffer) {
    const std::string line = "  " + std::string(1000, 'w') + " x";
    Buffer word;
    EXPECT_EQ(PARSE_GetWord(line.c_str(), word, 0), 1);
    EXPECT_EQ(word.text(), std::string(kRoom - 1, 'w'));
    EXPECT_EQ(PARSE_GetWord(line.c_str(), std::span<char>(word.bytes).first(0), 0), 1);
    EXPECT_EQ(PARSE_GetWord(line.c_str(), std::span<char>(word.bytes).first(1), 0), 1);
    EXPECT_EQ(word.text(), "");
}

// --- PARSE_GetRestFromWord

TEST(GetRestFromWord, KeepsInnerAndTrailingBlanks) {
    Buffer rest;
    EXPECT_EQ(PARSE_GetRestFromWord("Device Model:     Torvane  Disk 4 TB  ", rest, 2), 1);
    EXPECT_EQ(rest.text(), "Torvane  Disk 4 TB  ");
    EXPECT_EQ(PARSE_GetRestFromWord("  Device Model:", rest, 0), 1);
    EXPECT_EQ(rest.text(), "Device Model:");
}

TEST(GetRestFromWord, LeavesTheBufferAloneWhenTheWordIsMissing) {
    for (const char* const line : {"", "   ", "Device Model:", "Device Model:    "}) {
        Buffer rest;
        EXPECT_EQ(PARSE_GetRestFromWord(line, rest, 2), 0) << line;
        EXPECT_TRUE(rest.untouched()) << line;
    }
    Buffer rest;
    EXPECT_EQ(PARSE_GetRestFromWord("a b", rest, -1), 0);
    EXPECT_TRUE(rest.untouched());
}

TEST(GetRestFromWord, TreatsLineFeedsAsPartOfAWord) {
    Buffer rest;
    EXPECT_EQ(PARSE_GetRestFromWord("a\r\nb c\n", rest, 1), 1);
    EXPECT_EQ(rest.text(), "c\n");
}

TEST(GetRestFromWord, CopiesOutsideTextAsItStands) {
    Buffer rest;
    EXPECT_EQ(PARSE_GetRestFromWord("Serial Number: %s%n%d", rest, 2), 1);
    EXPECT_EQ(rest.text(), "%s%n%d");
}

TEST(GetRestFromWord, CutsAtTheBuffer) {
    const std::string line = "a " + std::string(1000, 'r');
    Buffer rest;
    EXPECT_EQ(PARSE_GetRestFromWord(line.c_str(), rest, 1), 1);
    EXPECT_EQ(rest.text(), std::string(kRoom - 1, 'r'));
}

// --- PARSE_CopyUntil

TEST(CopyUntil, CopiesUpToTheFirstDelimiter) {
    Buffer out;
    EXPECT_EQ(PARSE_CopyUntil("/dev/sdb -d ata # /dev/sdb, # ATA device", out, '#'), 1);
    EXPECT_EQ(out.text(), "/dev/sdb -d ata ");
    EXPECT_EQ(PARSE_CopyUntil("# comment", out, '#'), 1);
    EXPECT_EQ(out.text(), "");
}

TEST(CopyUntil, CopiesAllWithoutADelimiter) {
    Buffer out;
    EXPECT_EQ(PARSE_CopyUntil("/dev/sda -d ata", out, '#'), 0);
    EXPECT_EQ(out.text(), "/dev/sda -d ata");
    EXPECT_EQ(PARSE_CopyUntil("", out, '#'), 0);
    EXPECT_EQ(out.text(), "");
    EXPECT_EQ(PARSE_CopyUntil("abc", out, '\0'), 0) << "the terminator is no delimiter";
}

TEST(CopyUntil, FindsADelimiterBehindTheCut) {
    const std::string text = std::string(1000, 'x') + "#";
    Buffer out;
    EXPECT_EQ(PARSE_CopyUntil(text.c_str(), out, '#'), 1);
    EXPECT_EQ(out.text(), std::string(kRoom - 1, 'x'));
}

// --- PARSE_DigitsToInt64

TEST(DigitsToInt64, KeepsTheDigitsInOrder) {
    EXPECT_EQ(PARSE_DigitsToInt64("1,234,567"), 1234567);
    EXPECT_EQ(PARSE_DigitsToInt64("1,234"), 1234);
    EXPECT_EQ(PARSE_DigitsToInt64("12h 34m"), 1234);
    EXPECT_EQ(PARSE_DigitsToInt64("007"), 7);
}

TEST(DigitsToInt64, GivesZeroWithoutDigitsAndDropsAMinusSign) {
    EXPECT_EQ(PARSE_DigitsToInt64(""), 0);
    EXPECT_EQ(PARSE_DigitsToInt64("-"), 0);
    EXPECT_EQ(PARSE_DigitsToInt64("-12"), 12);
    EXPECT_EQ(PARSE_DigitsToInt64("\xB2\xB3"), 0) << "superscript two and three of Latin-1 are no digits";
}

TEST(DigitsToInt64, StopsAtTheLargestNumber) {
    constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(PARSE_DigitsToInt64("9223372036854775806"), kLargest - 1);
    EXPECT_EQ(PARSE_DigitsToInt64("9,223,372,036,854,775,807"), kLargest);
    EXPECT_EQ(PARSE_DigitsToInt64("9223372036854775808"), kLargest);
    EXPECT_EQ(PARSE_DigitsToInt64("340282366920938463463374607431768211455"), kLargest);
}

// --- Cost

TEST(ScannersCost, AHugeReportIsWalkedOncePerKey) {
    // As a tool gone wrong might print: attribute lines without any of the keys.
    const std::string attribute = std::string(kAttribute + 5) + "\r\n";
    std::string report;
    while (report.size() < testing::kHugeText) {
        report += attribute;
    }
    std::array<char, 4096> line{};
    const auto begin = std::chrono::steady_clock::now();
    for (const char* const key :
         {"Read SMART Data failed", "Device Model:", "Serial Number:", "Power_On_Minutes", "Power On Hours",
          "ATA Security is:", "Reallocated_Sector_Ct", "Reallocate_NAND_Blk_Cnt", "Reported_Uncorrect",
          "Reallocated_Event_Count", "Current_Pending_Sector", "Current_Pending_ECC_Cnt", "Offline_Uncorrectable",
          "Rotation Rate:", "Error: UNC at LBA"}) {
        EXPECT_EQ(PARSE_FindLine(report.c_str(), line, key), -1);
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin;
    RecordProperty("milliseconds", static_cast<int>(elapsed.count() * 1000));
    EXPECT_LT(elapsed.count(), testing::kHugeTextSeconds);
}

TEST(ScannersCost, ManyShortLinesAreWalkedOnce) {
    std::string listing;
    for (int i = 0; i < 1'000'000; ++i) {
        listing += "x\r\n";
    }
    std::array<char, 4096> line{};
    const auto begin = std::chrono::steady_clock::now();
    LineCursor cursor(listing.c_str());
    int lines = 0;
    while (cursor.next(line)) {
        ++lines;
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin;
    EXPECT_EQ(lines, 1'000'000);
    EXPECT_LT(elapsed.count(), testing::kHugeTextSeconds);
}

TEST(ScannersCost, LinesOfAHundredThousandBytesAreSearchedInTheirFirstPart) {
    const std::string longLine = std::string(50, 'a') + "key" + std::string(100'000, 'b') + "other" + "\r\n";
    std::string report = longLine + longLine;
    std::array<char, 4096> line{};
    EXPECT_EQ(PARSE_FindLine(report.c_str(), line, "key"), 0);
    EXPECT_EQ(PARSE_FindNextLine(report.c_str(), 0, line, "key"), 1);
    EXPECT_EQ(std::strlen(line.data()), line.size() - 1);
    EXPECT_EQ(PARSE_FindLine(report.c_str(), line, "other"), -1);
}

} // namespace
} // namespace torvane
