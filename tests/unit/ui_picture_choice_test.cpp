#include "ui/picture_choice.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace torvane {
namespace {

std::vector<std::uint8_t> bytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}

// Their checksum is the one that is published for these digits.
constexpr std::string_view kShippedBytes = "123456789";
constexpr ShippedPicture kShipped[] = {{"other.png", 9, 1}, {"car.png", 9, 0xCBF43926}};

std::optional<int> choose(std::string_view name, std::string_view file, int dpi) {
    return renderingInstead(name, bytesOf(file), kShipped, dpi);
}

TEST(PictureChoice, FilesThemselvesAtTheirOwnSize) {
    EXPECT_EQ(renderingFor(96), std::nullopt);
    EXPECT_EQ(renderingFor(72), std::nullopt);
    EXPECT_EQ(choose("car.png", kShippedBytes, 96), std::nullopt);
}

TEST(PictureChoice, SmallestRenderingThatNeedNotBeEnlarged) {
    EXPECT_EQ(renderingFor(97), 120);
    EXPECT_EQ(renderingFor(120), 120);
    EXPECT_EQ(renderingFor(121), 144);
    EXPECT_EQ(renderingFor(144), 144);
    EXPECT_EQ(renderingFor(168), 192);
    EXPECT_EQ(renderingFor(192), 192);
}

TEST(PictureChoice, LargestRenderingOnScreensThatAreFinerStill) {
    EXPECT_EQ(renderingFor(193), 192);
    EXPECT_EQ(renderingFor(288), 192);
    EXPECT_EQ(renderingFor(480), 192);
}

TEST(PictureChoice, RenderingInsteadOfTheShippedFile) {
    EXPECT_EQ(choose("car.png", kShippedBytes, 120), 120);
    EXPECT_EQ(choose("car.png", kShippedBytes, 168), 192);
    EXPECT_EQ(choose("car.png", kShippedBytes, 288), 192);
}

TEST(PictureChoice, ReplacedFileItself) {
    EXPECT_EQ(choose("car.png", "123456780", 144), std::nullopt) << "as large";
    EXPECT_EQ(choose("car.png", "1234567890", 144), std::nullopt) << "larger";
    EXPECT_EQ(choose("other.png", kShippedBytes, 144), std::nullopt) << "another shipped picture under this name";
}

TEST(PictureChoice, MissingOrDamagedFileIsNotMadeGood) {
    EXPECT_EQ(choose("car.png", "", 144), std::nullopt);
    EXPECT_EQ(choose("car.png", kShippedBytes.substr(0, 5), 144), std::nullopt);
}

TEST(PictureChoice, FileThatWasNeverShippedIsItself) {
    EXPECT_EQ(choose("unknown.png", kShippedBytes, 144), std::nullopt);
    EXPECT_EQ(renderingInstead("car.png", bytesOf(kShippedBytes), {}, 144), std::nullopt);
}

} // namespace
} // namespace torvane
