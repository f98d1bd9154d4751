#include "base/ascii.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace torvane {
namespace {

TEST(AsciiCase, ChangesTheLettersOfAsciiAlone) {
    for (int byte = 0; byte < 256; ++byte) {
        const auto character = static_cast<char>(byte);
        const bool lower = byte >= 'a' && byte <= 'z';
        const bool upper = byte >= 'A' && byte <= 'Z';
        EXPECT_EQ(lowerAscii(character), upper ? static_cast<char>(byte + 32) : character) << "byte " << byte;
        EXPECT_EQ(upperAscii(character), lower ? static_cast<char>(byte - 32) : character) << "byte " << byte;
        EXPECT_EQ(isAsciiLetter(character), lower || upper) << "byte " << byte;
    }
    EXPECT_EQ(upperAscii(L'\u0101'), L'\u0101') << "its low byte is no letter";
    EXPECT_FALSE(isAsciiLetter(L'\u0161')) << "its low byte is 'a'";
}

TEST(LowerAsciiText, LeavesUmlautsAlone) {
    EXPECT_EQ(lowerAsciiText(std::string_view("DiskPart.EXE \xC4\xD6")), "diskpart.exe \xC4\xD6");
    EXPECT_EQ(lowerAsciiText(std::wstring_view(L"VOLUME{A1}")), L"volume{a1}");
}

TEST(WithoutBlanksAround, KeepsInnerOnesAndNothingOfBlanksAlone) {
    EXPECT_EQ(withoutBlanksAround("  WD 40  EFRX "), "WD 40  EFRX");
    EXPECT_EQ(withoutBlanksAround("\tA\n"), "\tA\n");
    EXPECT_EQ(withoutBlanksAround("    "), "");
    EXPECT_EQ(withoutBlanksAround(""), "");
}

TEST(IsPrintableAscii, AcceptsBlankToTilde) {
    EXPECT_TRUE(isPrintableAscii(" !AZaz09~"));
}

TEST(IsPrintableAscii, AcceptsAnEmptyText) {
    EXPECT_TRUE(isPrintableAscii(""));
}

TEST(IsPrintableAscii, RefusesEveryByteOutsideBlankToTilde) {
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text = {'A', static_cast<char>(byte), 'Z'};
        EXPECT_EQ(isPrintableAscii(text), byte >= 0x20 && byte <= 0x7E) << "byte " << byte;
    }
}

TEST(AsciiText, HasAQuestionMarkForWhatIsNotAscii) {
    EXPECT_EQ(asciiText(L"C:\\B\u00FCro\\\u041F"), "C:\\B?ro\\?");
    EXPECT_EQ(asciiText(L"\u0080\u007F"), "?\x7F");
    EXPECT_EQ(asciiText(L""), "");
}

} // namespace
} // namespace torvane
