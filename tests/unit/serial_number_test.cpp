#include "records/serial_number.h"

#include <gtest/gtest.h>

#include <string>

namespace torvane {
namespace {

TEST(SerialNumber, EqualsItself) {
    EXPECT_TRUE(isSameSerialNumber("Z9AB12CD", "Z9AB12CD"));
    EXPECT_FALSE(isSameSerialNumber("Z9AB12CD", "Z9AB12CE"));
    EXPECT_FALSE(isSameSerialNumber("Z9AB12CD", "Z9AB12C"));
}

TEST(SerialNumber, BlanksAndCaseAreAside) {
    EXPECT_TRUE(isSameSerialNumber("     WD-WCC4E1234567", "WD-WCC4E1234567"));
    EXPECT_TRUE(isSameSerialNumber("wd-wcc4e 1234567  ", "WD-WCC4E1234567"));
    EXPECT_TRUE(isSameSerialNumber(std::string("AB12\0\0", 6), "AB12"));
}

TEST(SerialNumber, BytesMayStandInEitherOrder) {
    EXPECT_TRUE(isSameSerialNumber("9ZBA21DC", "Z9AB12CD"));
    EXPECT_TRUE(isSameSerialNumber("Z9AB12CD", "9ZBA21DC"));
    EXPECT_TRUE(isSameSerialNumber("  9ZBA21DC", "Z9AB12CD"));
    EXPECT_TRUE(isSameSerialNumber("ABC", "BAC")) << "an odd last byte stays where it is";
    EXPECT_FALSE(isSameSerialNumber("1234", "3412")) << "pairs keep their order";
}

TEST(SerialNumber, MayBeSpeltInHexadecimalDigits) {
    EXPECT_TRUE(isSameSerialNumber("5a39414231324344", "Z9AB12CD"));
    EXPECT_TRUE(isSameSerialNumber("395a424132314443", "Z9AB12CD")) << "and swapped besides";
    EXPECT_TRUE(isSameSerialNumber("202020205A39414231324344", "Z9AB12CD")) << "the blanks of its field spelt, too";
    EXPECT_FALSE(isSameSerialNumber("5a39414231324345", "Z9AB12CD"));
    EXPECT_FALSE(isSameSerialNumber("0039", "9")) << "what is not printable is no text";
}

TEST(SerialNumber, NoneIsNotEqualToNone) {
    EXPECT_FALSE(isSameSerialNumber("", ""));
    EXPECT_FALSE(isSameSerialNumber(" ", "  "));
    EXPECT_FALSE(isSameSerialNumber("", "Z9AB12CD"));
    EXPECT_FALSE(isSameSerialNumber("20202020", "    "));
    EXPECT_FALSE(isSameSerialNumber(std::string(4, '\0'), std::string(4, '\0')));
}

} // namespace
} // namespace torvane
