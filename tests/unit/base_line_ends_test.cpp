#include "base/line_ends.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

TEST(LineEndsTest, ABareLineFeedGetsItsCarriageReturnAndNothingElseChanges) {
    EXPECT_EQ(withWindowsLineEnds(""), "");
    EXPECT_EQ(withWindowsLineEnds("one\ntwo\r\nthree"), "one\r\ntwo\r\nthree");
    EXPECT_EQ(withWindowsLineEnds("\n\n"), "\r\n\r\n");
    EXPECT_EQ(withWindowsLineEnds("a\rb\r"), "a\rb\r");
}

} // namespace
} // namespace torvane
