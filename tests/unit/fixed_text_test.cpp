#include "base/fixed_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace torvane {
namespace {

TEST(FixedText, StartsEmptyAndZeroFilled) {
    FixedText<8> text;
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(text.view(), "");
    const auto bytes = text.writableBytes();
    EXPECT_TRUE(std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte == '\0'; }));
}

TEST(FixedText, KeepsATextThatFits) {
    FixedText<8> text;
    text.assign("1234567");
    EXPECT_EQ(text.view(), "1234567");
    EXPECT_STREQ(text.c_str(), "1234567");
    EXPECT_FALSE(text.empty());
}

TEST(FixedText, CutsALongerTextBeforeTheTerminator) {
    FixedText<8> text;
    text.assign(std::string(500, 'v'));
    EXPECT_EQ(text.view(), "vvvvvvv");
    EXPECT_STREQ(text.c_str(), "vvvvvvv");
}

TEST(FixedText, ASecondTextLeavesNothingOfTheFirst) {
    FixedText<8> text;
    text.assign("1234567");
    text.assign("ab");
    EXPECT_EQ(text.view(), "ab");
    const auto bytes = text.writableBytes();
    EXPECT_TRUE(std::all_of(bytes.begin() + 2, bytes.end(), [](char byte) { return byte == '\0'; }));
}

TEST(FixedText, ClearEmptiesTheField) {
    FixedText<8> text;
    text.assign("abc");
    text.clear();
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(text.view(), "");
}

TEST(FixedText, ViewEndsAtTheFirstNul) {
    FixedText<8> text;
    text.assign(std::string_view("ab\0cd", 5));
    EXPECT_EQ(text.view(), "ab");
}

TEST(FixedText, WritableBytesSpareTheTerminator) {
    FixedText<8> text;
    const auto bytes = text.writableBytes();
    ASSERT_EQ(bytes.size(), 7U);
    std::fill(bytes.begin(), bytes.end(), 'x');
    EXPECT_EQ(text.view(), "xxxxxxx");
    EXPECT_STREQ(text.c_str(), "xxxxxxx");
}

} // namespace
} // namespace torvane
