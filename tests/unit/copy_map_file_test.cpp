#include "copy/evidence/map_file.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

constexpr std::uint64_t kBlock = 0x2000000;

TEST(MapFile, OfAWholeCopyIsOneFinishedBlock) {
    SourceMap map(3 * kBlock);
    map.mark(0, 3 * kBlock, RangeStatus::kFinished);
    EXPECT_EQ(mapFileText(map, {"Mapfile. Created by Torvane 1.2", "Image"}),
              "# Mapfile. Created by Torvane 1.2\n"
              "# Image\n"
              "# current_pos  current_status  current_pass\n"
              "0x00000000     +               1\n"
              "#      pos        size  status\n"
              "0x00000000  0x06000000  +\n");
}

TEST(MapFile, BeginsWithTheFirstPlaceThatWasNotTried) {
    SourceMap map(0x7470C06000);
    map.mark(0, kBlock, RangeStatus::kNonTrimmed);
    map.mark(kBlock, 0x7000000000 - kBlock, RangeStatus::kFinished);
    EXPECT_EQ(mapFileText(map, {}), "# current_pos  current_status  current_pass\n"
                                    "0x7000000000     ?               1\n"
                                    "#      pos        size  status\n"
                                    "0x00000000  0x02000000  *\n"
                                    "0x02000000  0x6FFE000000  +\n"
                                    "0x7000000000  0x470C06000  ?\n");
}

TEST(MapFile, ThenWithThoseOfTheOtherPhases) {
    SourceMap map(400);
    map.mark(0, 400, RangeStatus::kFinished);
    map.mark(100, 50, RangeStatus::kBad);
    const auto statusLine = [&] {
        const std::string text = mapFileText(map, {});
        return text.substr(text.find('\n') + 1, 33);
    };
    EXPECT_EQ(statusLine(), "0x00000064     -               1\n");
    map.mark(200, 50, RangeStatus::kNonScraped);
    EXPECT_EQ(statusLine(), "0x000000C8     /               1\n");
    map.mark(300, 50, RangeStatus::kNonTrimmed);
    EXPECT_EQ(statusLine(), "0x0000012C     *               1\n");
}

TEST(MapFile, OfNothingIsFinished) {
    EXPECT_EQ(mapFileText(SourceMap(), {}), "# current_pos  current_status  current_pass\n"
                                            "0x00000000     +               1\n"
                                            "#      pos        size  status\n");
}

TEST(MapFile, OutsideTextStaysInItsComment) {
    EXPECT_EQ(mapFileText(SourceMap(), {"drive [A\n0x0 0x1 +]"}).substr(0, 24), "# drive [A 0x0 0x1 +]\n# ");
}

} // namespace
} // namespace torvane
