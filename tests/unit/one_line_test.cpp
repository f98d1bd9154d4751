#include "base/one_line.h"

#include <gtest/gtest.h>

#include <string>

namespace torvane {
namespace {

TEST(OneLine, LeavesPrintableTextAlone) {
    EXPECT_EQ(oneLine("WDC \xC3\xA4\xC3\xB6 \xE2\x82\xAC %s\xB0"), "WDC \xC3\xA4\xC3\xB6 \xE2\x82\xAC %s\xB0");
}

TEST(OneLine, HasNoControlCharacterAndNoLineBreak) {
    EXPECT_EQ(oneLine("a\r\nb\tc\x7F\x01"
                      "d"),
              "a  b c  d");
    EXPECT_EQ(oneLine(std::string("a\0b", 3)), "a b");
    EXPECT_EQ(oneLine("a\xC2\x85"
                      "b\xE2\x80\xA8\xE2\x80\xA9"
                      "c"),
              "a b  c");
}

} // namespace
} // namespace torvane
