#include "base/checksum.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string_view>
#include <vector>

namespace torvane {
namespace {

std::uint32_t crcOf(std::string_view text) {
    return crc32(std::vector<std::uint8_t>(text.begin(), text.end()));
}

TEST(Checksum, IsCrc32AsPublished) {
    EXPECT_EQ(crcOf(""), 0U);
    EXPECT_EQ(crcOf("123456789"), 0xCBF43926U);
    EXPECT_EQ(crcOf("The quick brown fox jumps over the lazy dog"), 0x414FA339U);
}

} // namespace
} // namespace torvane
