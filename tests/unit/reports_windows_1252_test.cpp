#include "reports/windows_1252.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

TEST(Windows1252, KeepsAscii) {
    std::u16string text;
    std::string expected;
    for (char character = 0x20; character < 0x7F; ++character) {
        text += static_cast<char16_t>(character);
        expected += character;
    }
    EXPECT_EQ(toWindows1252(text), expected);
    EXPECT_EQ(toWindows1252(u""), "");
}

TEST(Windows1252, HoldsTheUpperHalfOfLatin1) {
    for (unsigned code = 0xA0; code <= 0xFF; ++code) {
        const auto character = static_cast<char16_t>(code);
        EXPECT_EQ(toWindows1252(std::u16string_view(&character, 1)), std::string(1, static_cast<char>(code))) << code;
    }
}

TEST(Windows1252, HoldsTwentySevenOthers) {
    EXPECT_EQ(toWindows1252(u"\u20AC\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152\u017D"),
              "\x80\x82\x83\x84\x85\x86\x87\x88\x89\x8A\x8B\x8C\x8E");
    EXPECT_EQ(toWindows1252(u"\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A\u0153\u017E\u0178"),
              "\x91\x92\x93\x94\x95\x96\x97\x98\x99\x9A\x9B\x9C\x9E\x9F");
}

TEST(Windows1252, LacksTheRest) {
    EXPECT_EQ(toWindows1252(u"\u0141\u00F3d\u017A"), "?\xF3"
                                                     "d?");
    EXPECT_EQ(toWindows1252(u"\u041C\u043E\uFFFD"), "???");
    EXPECT_EQ(toWindows1252(u"\u0081\u008D\u008F\u0090\u009D\u0080"), "??????");
    EXPECT_EQ(toWindows1252(u"a\tb\r\nc\u007F"), "a?b??c?");
    EXPECT_EQ(toWindows1252(std::u16string_view(u"a\0b", 3)), "a?b");
}

TEST(Windows1252, ACharacterOfTwoUnitsIsOneQuestionMark) {
    EXPECT_EQ(toWindows1252(u"a\U0001F4BEb"), "a?b");
    const char16_t lone[] = {0xD83D, u'a', 0xDCBE, 0xD83D};
    EXPECT_EQ(toWindows1252(std::u16string_view(lone, 4)), "?a??");
}

} // namespace
} // namespace torvane
