#include "discovery/device_text.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace torvane {
namespace {

TEST(TrimBlanks, RemovesBlanksAtBothEndsAndKeepsInnerOnes) {
    EXPECT_EQ(trimBlanks("  WD 40  EFRX  "), "WD 40  EFRX");
}

TEST(TrimBlanks, LeavesTextWithoutBlanksAlone) {
    EXPECT_EQ(trimBlanks("S3Z9NB0K"), "S3Z9NB0K");
}

TEST(TrimBlanks, OneBlankStaysOneBlank) {
    EXPECT_EQ(trimBlanks(" "), " ");
}

TEST(TrimBlanks, OnlyBlanksBecomeOneBlank) {
    EXPECT_EQ(trimBlanks("     "), " ");
}

TEST(TrimBlanks, EmptyTextStaysEmpty) {
    EXPECT_EQ(trimBlanks(""), "");
}

TEST(TrimBlanks, OnlyBlanksAreTrimmedNotTabsOrLineEnds) {
    EXPECT_EQ(trimBlanks(" \tA\n "), "\tA\n");
}

TEST(SwapBytePairs, PutsTheHighByteOfEachWordFirst) {
    std::string text = "eSgata e";
    swapBytePairs(text);
    EXPECT_EQ(text, "Seagate ");
}

TEST(SwapBytePairs, LeavesAnOddLastByteInPlace) {
    std::string text = "BADCE";
    swapBytePairs(text);
    EXPECT_EQ(text, "ABCDE");
}

TEST(SwapBytePairs, AcceptsNothing) {
    swapBytePairs({});
}

struct Expansion {
    std::string_view text;
    std::string_view expanded;
};

class ExpandDeviceText : public ::testing::TestWithParam<Expansion> {};

TEST_P(ExpandDeviceText, ExpandsAsAFormatWithoutArguments) {
    EXPECT_EQ(expandDeviceText(GetParam().text), GetParam().expanded);
}

INSTANTIATE_TEST_SUITE_P(Plain, ExpandDeviceText,
                         ::testing::Values(Expansion{"", ""}, Expansion{"WDC WD40EFRX", "WDC WD40EFRX"},
                                           Expansion{"  kept  ", "  kept  "}, Expansion{"back\\slash", "back\\slash"}));

INSTANTIATE_TEST_SUITE_P(DoubledPercentSign, ExpandDeviceText,
                         ::testing::Values(Expansion{"%%", "%"}, Expansion{"100%%", "100%"}, Expansion{"%%s", "%s"},
                                           Expansion{"%%%%", "%%"}, Expansion{"a%%b%%c", "a%b%c"}));

INSTANTIATE_TEST_SUITE_P(ConversionsGiveNothing, ExpandDeviceText,
                         ::testing::Values(Expansion{"%s", ""}, Expansion{"a%sb", "ab"}, Expansion{"%n%n%n", ""},
                                           Expansion{"%d%x%p", ""}, Expansion{"%5d|", "|"}, Expansion{"%-10s|", "|"},
                                           Expansion{"%+ #0123.456lldX", "X"}, Expansion{"%*.*fX", "X"},
                                           Expansion{"%.sX", "X"}, Expansion{"%hhdX", "X"}, Expansion{"%hdX", "X"},
                                           Expansion{"%ldX", "X"}, Expansion{"%jdX", "X"}, Expansion{"%zuX", "X"},
                                           Expansion{"%tdX", "X"}, Expansion{"%LfX", "X"}, Expansion{"%I64dX", "X"},
                                           Expansion{"%I32uX", "X"}, Expansion{"%IuX", "X"}, Expansion{"%wsX", "X"},
                                           Expansion{"%999999999999999999999999dX", "X"}));

INSTANTIATE_TEST_SUITE_P(UnfinishedConversionsGiveNothing, ExpandDeviceText,
                         ::testing::Values(Expansion{"%", ""}, Expansion{"50%", "50"}, Expansion{"%-", ""},
                                           Expansion{"%5", ""}, Expansion{"%5.", ""}, Expansion{"%5.3", ""},
                                           Expansion{"%l", ""}, Expansion{"%I64", ""}, Expansion{"%%%", "%"}));

INSTANTIATE_TEST_SUITE_P(WhatIsNoConversionLetterStays, ExpandDeviceText,
                         ::testing::Values(Expansion{"5%, 6%!", "5, 6!"}, Expansion{"%5%%", "%"}, Expansion{"%5%", ""},
                                           Expansion{"%\xE9", "\xE9"}));

TEST(ExpandDeviceText, DropsNoTextBehindARunOfPercentSigns) {
    const std::string text = std::string(1001, '%') + "s-tail";
    EXPECT_EQ(expandDeviceText(text), std::string(500, '%') + "-tail");
}

} // namespace
} // namespace torvane
