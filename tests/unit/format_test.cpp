#include "base/format.h"

#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdint>
#include <limits>
#include <string>

namespace torvane {
namespace {

TEST(FormatText, FormatsAsPrintfDoes) {
    EXPECT_EQ(formatText("%s: %d of %02d, %.02f", "name", -7, 3, 1.005), "name: -7 of 03, 1.00");
}

TEST(FormatText, FormatsWholeSixtyFourBitNumbers) {
    EXPECT_EQ(formatText("%" PRId64, std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(formatText("%" PRIu64, std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
}

TEST(FormatText, GivesATextOfAnyLength) {
    const std::string longText(100000, 'x');
    EXPECT_EQ(formatText("[%s]", longText.c_str()), "[" + longText + "]");
}

TEST(FormatText, OutsideTextIsAnArgumentAndNotExpanded) {
    EXPECT_EQ(formatText("%s", "100%s%n"), "100%s%n");
}

TEST(FormatText, AnEmptyTextIsPossible) {
    EXPECT_EQ(formatText("%s", ""), "");
}

} // namespace
} // namespace torvane
