#include "copy/rescue/rescue_picture.h"

#include <gtest/gtest.h>

#include <set>

namespace torvane {
namespace {

using enum RescueShade;

TEST(RescuePicture, OfAnUntriedDriveIsOneBar) {
    const RescuePicture picture = layOutRescuePicture(SourceMap(1000), 0, 50, 20);
    EXPECT_EQ(picture.bars,
              (std::vector<RescueBar>{{.left = 0, .top = 0, .width = 50, .height = 20, .shade = kUntried}}));
    EXPECT_EQ(picture.now, 0);
}

TEST(RescuePicture, ASingleBadSectorIsSeenOnTheLargestDrive) {
    constexpr std::uint64_t kSize = 20'000'000'000'000;
    SourceMap map(kSize);
    map.mark(0, kSize, RangeStatus::kFinished);
    map.mark(kSize / 2 + 4096, 512, RangeStatus::kBad);
    const RescuePicture picture = layOutRescuePicture(map, kSize / 2 + 4096, 100, 20);
    EXPECT_EQ(picture.bars,
              (std::vector<RescueBar>{{.left = 0, .top = 0, .width = 50, .height = 20, .shade = kRead},
                                      {.left = 50, .top = 0, .width = 1, .height = 16, .shade = kRead},
                                      {.left = 50, .top = 16, .width = 1, .height = 4, .shade = kBad},
                                      {.left = 51, .top = 0, .width = 49, .height = 20, .shade = kRead}}));
    EXPECT_EQ(picture.now, 50);
}

TEST(RescuePicture, EachShadeIsAsHighAsItsShare) {
    SourceMap map(1000);
    map.mark(0, 500, RangeStatus::kFinished);
    map.mark(500, 100, RangeStatus::kNonTrimmed);
    map.mark(600, 100, RangeStatus::kNonScraped);
    const RescuePicture picture = layOutRescuePicture(map, 999, 1, 102);
    EXPECT_EQ(picture.bars,
              (std::vector<RescueBar>{{.left = 0, .top = 0, .width = 1, .height = 52, .shade = kRead},
                                      {.left = 0, .top = 52, .width = 1, .height = 30, .shade = kUntried},
                                      {.left = 0, .top = 82, .width = 1, .height = 20, .shade = kMissing}}));
}

TEST(RescuePicture, LeavesRoomForEveryShade) {
    SourceMap map(1000);
    map.mark(0, 510, RangeStatus::kFinished);
    map.mark(998, 1, RangeStatus::kNonTrimmed);
    map.mark(999, 1, RangeStatus::kBad);
    EXPECT_EQ(layOutRescuePicture(map, 0, 1, 40).bars,
              (std::vector<RescueBar>{{.left = 0, .top = 0, .width = 1, .height = 5, .shade = kRead},
                                      {.left = 0, .top = 5, .width = 1, .height = 19, .shade = kUntried},
                                      {.left = 0, .top = 24, .width = 1, .height = 8, .shade = kMissing},
                                      {.left = 0, .top = 32, .width = 1, .height = 8, .shade = kBad}}));
}

TEST(RescuePicture, CoversTheStripWhateverTheNumbers) {
    for (const std::uint64_t size : {100ULL, 101ULL, 199ULL, 12345ULL, 0x7FFFFFFFFFFFFFFFULL}) {
        SourceMap map(size);
        map.mark(size / 3, size / 7 + 1, RangeStatus::kBad);
        map.mark(size / 2, size / 5, RangeStatus::kFinished);
        for (const int width : {1, 7, 100}) {
            const RescuePicture picture = layOutRescuePicture(map, size + 5, width, 4);
            int area = 0;
            for (const RescueBar& bar : picture.bars) {
                area += bar.width * bar.height;
                EXPECT_GE(bar.top, 0);
                EXPECT_LE(bar.top + bar.height, 4);
                EXPECT_LE(bar.left + bar.width, width);
            }
            EXPECT_EQ(area, width * 4) << size << " bytes, " << width << " columns";
            EXPECT_GE(picture.now, 0);
            EXPECT_LT(picture.now, width);
        }
    }
}

TEST(RescuePicture, TellsTheColumnOfNow) {
    EXPECT_EQ(layOutRescuePicture(SourceMap(199), 100, 100, 20).now, 50);
    EXPECT_EQ(layOutRescuePicture(SourceMap(199), 101, 100, 20).now, 51);
    EXPECT_EQ(layOutRescuePicture(SourceMap(199), std::nullopt, 100, 20).now, std::nullopt);
}

TEST(RescuePicture, OfNothingIsEmpty) {
    EXPECT_EQ(layOutRescuePicture(SourceMap(), 0, 100, 20), RescuePicture());
    EXPECT_EQ(layOutRescuePicture(SourceMap(1000), 0, 0, 20), RescuePicture());
    EXPECT_EQ(layOutRescuePicture(SourceMap(1000), 0, 100, 3), RescuePicture());
    EXPECT_EQ(layOutRescuePicture(SourceMap(99), 0, 100, 20), RescuePicture());
}

TEST(RescuePicture, TellsNothingByColourAlone) {
    std::set<RescuePattern> patterns;
    std::set<std::string_view> texts;
    for (const RescueKeyEntry& entry : kRescueKey) {
        texts.insert(entry.text);
    }
    for (std::size_t i = 0; i < kRescueShadeCount; ++i) {
        patterns.insert(kRescueKey[i].pattern);
    }
    EXPECT_EQ(texts.size(), kRescueKey.size());
    EXPECT_EQ(patterns.size(), kRescueShadeCount);
}

} // namespace
} // namespace torvane
