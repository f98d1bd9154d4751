#include "monitoring/leading_number.h"

#include <gtest/gtest.h>

#include <limits>

namespace torvane {
namespace {

TEST(LeadingNumber, ReadsTheDigitsThatATextBeginsWith) {
    EXPECT_EQ(leadingInt32("8123"), 8123);
    EXPECT_EQ(leadingInt32("1234h+05m"), 1234);
    EXPECT_EQ(leadingInt32("12 34"), 12);
    EXPECT_EQ(leadingInt32("007"), 7);
    EXPECT_EQ(leadingInt64("281474976710655"), 281474976710655);
}

TEST(LeadingNumber, SkipsWhiteSpaceAndTakesOneSign) {
    EXPECT_EQ(leadingInt32(" \t\r\n\v\f-5"), -5);
    EXPECT_EQ(leadingInt32("+5"), 5);
    EXPECT_EQ(leadingInt32("+-5"), 0);
    EXPECT_EQ(leadingInt32("-+5"), 0);
    EXPECT_EQ(leadingInt32("- 5"), 0);
}

TEST(LeadingNumber, IsZeroWithoutDigits) {
    for (const char* const text : {"", " ", "-", "+", "x12", "0x10", "(42 22 0)"}) {
        EXPECT_EQ(leadingInt32(text), 0) << text;
        EXPECT_EQ(leadingInt64(text), 0) << text;
    }
}

TEST(LeadingNumber, StopsAtTheResultsRange) {
    EXPECT_EQ(leadingInt32("2147483647"), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(leadingInt32("2147483648"), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(leadingInt32("-2147483649"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(leadingInt64("9223372036854775808"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(leadingInt64("-9223372036854775809"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(leadingInt32("99999999999999999999999"), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(leadingInt32(" -99999999999999999999999"), std::numeric_limits<std::int32_t>::min());
}

} // namespace
} // namespace torvane
