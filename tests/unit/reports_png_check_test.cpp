#include "reports/png_check.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace torvane {
namespace {

using Bytes = std::vector<std::uint8_t>;

// 3 x 2 pixels, 8-bit RGB: signature, IHDR, IDAT, IEND.
const Bytes kPicture = {0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a, 0x00, 0x00, 0x00, 0x0d, 0x49, 0x48, 0x44,
                        0x52, 0x00, 0x00, 0x00, 0x03, 0x00, 0x00, 0x00, 0x02, 0x08, 0x02, 0x00, 0x00, 0x00, 0x12,
                        0x16, 0xf1, 0x4d, 0x00, 0x00, 0x00, 0x10, 0x49, 0x44, 0x41, 0x54, 0x78, 0xda, 0x63, 0x50,
                        0x48, 0x58, 0x00, 0x41, 0x0c, 0x70, 0x16, 0x00, 0x40, 0x94, 0x06, 0xc1, 0x70, 0xe7, 0x21,
                        0x50, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45, 0x4e, 0x44, 0xae, 0x42, 0x60, 0x82};

TEST(PngCheck, AcceptsAWholeFile) {
    EXPECT_TRUE(isWholePng(kPicture));
}

TEST(PngCheck, IgnoresWhatFollowsTheEnd) {
    Bytes longer = kPicture;
    longer.resize(longer.size() + 100, 0xFF);
    EXPECT_TRUE(isWholePng(longer));
}

TEST(PngCheck, RefusesAFileCutAnywhere) {
    for (std::size_t size = 0; size < kPicture.size(); ++size) {
        EXPECT_FALSE(isWholePng(ByteView(kPicture).first(size))) << size;
    }
}

TEST(PngCheck, RefusesAnyChangedBit) {
    for (std::size_t i = 0; i < 8 * kPicture.size(); ++i) {
        Bytes changed = kPicture;
        changed[i / 8] = static_cast<std::uint8_t>(changed[i / 8] ^ (1U << (i % 8)));
        EXPECT_FALSE(isWholePng(changed)) << "bit " << i;
    }
}

TEST(PngCheck, RefusesAFileWithoutItsHeaderChunk) {
    Bytes headless = kPicture;
    headless.erase(headless.begin() + 8, headless.begin() + 33);
    EXPECT_FALSE(isWholePng(headless));
}

TEST(PngCheck, SurvivesALengthOfFourGigabytes) {
    Bytes huge = kPicture;
    std::fill(huge.begin() + 8, huge.begin() + 12, std::uint8_t{0xFF});
    EXPECT_FALSE(isWholePng(huge));
}

} // namespace
} // namespace torvane
