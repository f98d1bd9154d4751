#include "base/bytes.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>

namespace torvane {
namespace {

constexpr std::array<std::uint8_t, 9> kBytes = {0x01, 0x02, 0x03, 0x04, 0x85, 0x86, 0x87, 0x88, 0xFF};

TEST(LoadLe, ReadsTheLowByteFirst) {
    EXPECT_EQ(loadLe16(kBytes, 0), 0x0201U);
    EXPECT_EQ(loadLe32(kBytes, 0), 0x04030201U);
    EXPECT_EQ(loadLe64(kBytes, 0), 0x8887868504030201U);
}

TEST(LoadLe, NeedsNoAlignment) {
    EXPECT_EQ(loadLe16(kBytes, 7), 0xFF88U);
    EXPECT_EQ(loadLe32(kBytes, 5), 0xFF888786U);
    EXPECT_EQ(loadLe64(kBytes, 1), 0xFF88878685040302U);
}

TEST(LoadLe, BytesBehindTheEndReadAsZero) {
    EXPECT_EQ(loadLe16(kBytes, 8), 0x00FFU);
    EXPECT_EQ(loadLe32(kBytes, 7), 0x0000FF88U);
    EXPECT_EQ(loadLe64(kBytes, 8), 0xFFU);
    EXPECT_EQ(loadLe32(kBytes, 9), 0U);
    EXPECT_EQ(loadLe32({}, 0), 0U);
}

TEST(LoadLe, AnOffsetThatWouldWrapAroundReadsAsZero) {
    EXPECT_EQ(loadLe64(kBytes, std::numeric_limits<std::size_t>::max()), 0U);
    EXPECT_EQ(loadLe64(kBytes, std::numeric_limits<std::size_t>::max() - 3), 0U);
}

TEST(StoreLe, WritesTheLowByteFirst) {
    std::array<std::uint8_t, 6> bytes{};
    storeLe(bytes, 1, std::uint32_t{0x11223344});
    EXPECT_EQ(bytes, (std::array<std::uint8_t, 6>{0, 0x44, 0x33, 0x22, 0x11, 0}));
}

TEST(StoreLe, DropsBytesBehindTheEnd) {
    std::array<std::uint8_t, 2> bytes{};
    storeLe(bytes, 1, std::uint32_t{0x11223344});
    EXPECT_EQ(bytes, (std::array<std::uint8_t, 2>{0, 0x44}));
    storeLe(bytes, std::numeric_limits<std::size_t>::max(), std::uint32_t{0x55667788});
    EXPECT_EQ(bytes, (std::array<std::uint8_t, 2>{0, 0x44}));
}

} // namespace
} // namespace torvane
