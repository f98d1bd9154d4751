#include "hex/hex_panes.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace torvane {
namespace {

std::array<std::byte, kHexViewBytes> countingBytes() {
    std::array<std::byte, kHexViewBytes> bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::byte>(i & 0xFF);
    }
    return bytes;
}

TEST(HexPanes, HexTextHasAThirtyTwoRowsOfSixteenBytes) {
    const std::string text = hexPaneText(countingBytes());
    ASSERT_EQ(text.size(), 32U * 49);
    for (std::size_t row = 0; row < 32; ++row) {
        EXPECT_EQ(text[row * 49 + 48], '\n');
        EXPECT_EQ(text[row * 49 + 47], ' ');
    }
    EXPECT_EQ(text.substr(0, 49), "00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F \n");
    EXPECT_EQ(text.substr(31 * 49), "F0 F1 F2 F3 F4 F5 F6 F7 F8 F9 FA FB FC FD FE FF \n");
    EXPECT_EQ(text.find('\r'), std::string::npos);
}

TEST(HexPanes, CharacterTextShowsWhatIsPrintable) {
    const std::string text = characterPaneText(countingBytes());
    ASSERT_EQ(text.size(), 32U * 17);
    EXPECT_EQ(text.substr(0, 17), "................\n");
    EXPECT_EQ(text.substr(2 * 17, 17), " !\"#$%&'()*+,-./\n");
    EXPECT_EQ(text.substr(7 * 17, 17), "pqrstuvwxyz{|}~.\n");
    // Nothing above ASCII is printable.
    EXPECT_EQ(text.substr(8 * 17, 17), "................\n");
    EXPECT_EQ(text.substr(15 * 17, 17), "................\n");
}

TEST(HexPanes, EachRowHasItsOffset) {
    const std::string text = rowOffsetsText();
    EXPECT_EQ(text.substr(0, 12), "000\n010\n020\n");
    EXPECT_EQ(text.substr(text.size() - 8), "1E0\n1F0\n");
    EXPECT_EQ(text.size(), 32U * 4);
}

TEST(HexPanes, PositionTellsSectorAndOffset) {
    EXPECT_EQ(hexPositionText(0, 2048, 512), "Sector 0 of 0 to 2047    byte offset 0x0");
    EXPECT_EQ(hexPositionText(39062499999, 39062500000, 512),
              "Sector 39062499999 of 0 to 39062499999    byte offset 0x12309CE53E00");
    EXPECT_EQ(hexPositionText(3, 10, 4096), "Sector 3 of 0 to 9    byte offset 0x3000");
    EXPECT_EQ(hexPositionText(0, 0, 512), "Sector 0 of 0 to 0    byte offset 0x0");
}

TEST(HexPanes, ScrollPositionIsAShareOfTheDrive) {
    EXPECT_EQ(sectorAtScrollPosition(32000, 0), 0U);
    EXPECT_EQ(sectorAtScrollPosition(32000, 1), 1U);
    EXPECT_EQ(sectorAtScrollPosition(31999, 1), 0U) << "cut, not rounded";
    EXPECT_EQ(sectorAtScrollPosition(2048, 16000), 1024U);
}

TEST(HexPanes, ScrollPositionReachesOverTwentyTerabytes) {
    constexpr std::uint64_t kSectors = 39062500000;
    EXPECT_EQ(sectorAtScrollPosition(kSectors, 1), 1220703U);
    EXPECT_EQ(sectorAtScrollPosition(kSectors, 16000), 19531250000U);
    EXPECT_EQ(sectorAtScrollPosition(kSectors, 31991), 39051513671U);
}

TEST(HexPanes, ScrollPositionStaysOnTheDrive) {
    EXPECT_EQ(sectorAtScrollPosition(2048, 32000), 2047U);
    EXPECT_EQ(sectorAtScrollPosition(2048, 65535), 2047U);
    EXPECT_EQ(sectorAtScrollPosition(0, 31991), 0U);
    EXPECT_EQ(sectorAtScrollPosition(2048, -1), 0U);
    EXPECT_EQ(sectorAtScrollPosition(~std::uint64_t{0}, 32000), ~std::uint64_t{0} - 1);
}

TEST(HexPanes, ReadsWholeSectors) {
    EXPECT_EQ(hexReadBytes(512), 512U);
    EXPECT_EQ(hexReadBytes(4096), 4096U);
    EXPECT_EQ(hexReadBytes(520), 520U);
    EXPECT_EQ(hexReadBytes(200), 600U);
    EXPECT_EQ(hexReadBytes(0), 512U);
    EXPECT_EQ(hexReadBytes(-4096), 512U);
    EXPECT_EQ(hexReadBytes(1 << 30), 512U);
}

} // namespace
} // namespace torvane
