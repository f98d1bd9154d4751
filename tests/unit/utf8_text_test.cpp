#include "base/utf8_text.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

TEST(Utf16FromUtf8, KeepsWhatIsWellFormed) {
    EXPECT_EQ(utf16FromUtf8(""), u"");
    EXPECT_EQ(utf16FromUtf8("plain\r\n~"), u"plain\r\n~");
    EXPECT_EQ(utf16FromUtf8(std::string_view("a\0b", 3)), std::u16string_view(u"a\0b", 3));
    EXPECT_EQ(utf16FromUtf8("\xC3\xA4\xC3\x9F \xD0\x96 \xC2\xB0 \xE2\x82\xAC"), u"\u00E4\u00DF \u0416 \u00B0 \u20AC");
    EXPECT_EQ(utf16FromUtf8("\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"),
              u"\u0080\u07FF\u0800\uD7FF\uE000\uFFFF");
    EXPECT_EQ(utf16FromUtf8("\xF0\x90\x80\x80\xF0\x9F\x92\xBE\xF4\x8F\xBF\xBF"), u"\U00010000\U0001F4BE\U0010FFFF");
}

TEST(Utf16FromUtf8, ReadsAStrayByteAsLatin1) {
    EXPECT_EQ(utf16FromUtf8("45\xB0"
                            "C"),
              u"45\u00B0C");
    EXPECT_EQ(utf16FromUtf8("M\xFCller, Stra\xDF"
                            "e \xC3"),
              u"M\u00FCller, Stra\u00DFe \u00C3");
    EXPECT_EQ(utf16FromUtf8("\xB0\xC2\xB0\xFF"), u"\u00B0\u00B0\u00FF") << "beside UTF-8, too";
    EXPECT_EQ(utf16FromUtf8("\x80\x9F\xA0"), u"\uFFFD\uFFFD\u00A0") << "control characters are shown by nobody";
}

TEST(Utf16FromUtf8, TakesNothingForACharacterThatIsNone) {
    EXPECT_EQ(utf16FromUtf8("\xE4r\xE9"), u"\u00E4r\u00E9");
    EXPECT_EQ(utf16FromUtf8("\xE2\x82"), u"\u00E2\uFFFD") << "cut";
    EXPECT_EQ(utf16FromUtf8("\xF0\xA4\xA4"), u"\u00F0\u00A4\u00A4") << "cut";
    EXPECT_EQ(utf16FromUtf8("\xC0\xAF\xE0\xA0"), u"\u00C0\u00AF\u00E0\u00A0") << "longer than need be";
    EXPECT_EQ(utf16FromUtf8("\xE0\x9F\xBF"), u"\u00E0\uFFFD\u00BF") << "longer than need be";
    EXPECT_EQ(utf16FromUtf8("\xED\xA0\xA1"), u"\u00ED\u00A0\u00A1") << "half of a pair";
    EXPECT_EQ(utf16FromUtf8("\xF4\xA1\xA1\xA1"), u"\u00F4\u00A1\u00A1\u00A1") << "beyond the last";
    EXPECT_EQ(utf16FromUtf8("\xF8\xA1"), u"\u00F8\u00A1");
}

} // namespace
} // namespace torvane
