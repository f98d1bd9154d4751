#include "base/scale.h"

#include <gtest/gtest.h>

namespace torvane {

TEST(Scale, ChangesNothingAt96Dots) {
    const Scale scale;
    for (const int length : {-7, -1, 0, 1, 13, 1190}) {
        EXPECT_EQ(scale.px(length), length);
        EXPECT_EQ(scale.at96(length), length);
    }
}

TEST(Scale, RoundsToTheNearestAndHalvesAwayFromZero) {
    const Scale quarterMore{120};
    EXPECT_EQ(quarterMore.px(1190), 1488) << "1487.5";
    EXPECT_EQ(quarterMore.px(1), 1) << "1.25";
    EXPECT_EQ(quarterMore.px(2), 3) << "2.5";
    EXPECT_EQ(quarterMore.px(-2), -3) << "-2.5";
    EXPECT_EQ(quarterMore.px(-1), -1) << "-1.25";
    EXPECT_EQ(Scale{144}.px(25), 38) << "37.5";
    EXPECT_EQ(Scale{192}.px(25), 50);
}

TEST(Scale, ScalesARectangleEdgeByEdge) {
    const Scale scale{120};
    const PixelRect left{10, 4, 163, 18};
    const PixelRect right{163, 4, 200, 18};
    EXPECT_EQ(scale.px(left), (PixelRect{13, 5, 204, 23}));
    EXPECT_EQ(scale.px(left).right, scale.px(right).left) << "what touches at 96 dots touches here";
    EXPECT_EQ(scale.px(PixelSize{154, 25}), (PixelSize{193, 31}));
}

TEST(Scale, LeadsBackToWhereItCameFrom) {
    for (const int dpi : {96, 120, 144, 168, 192, 288}) {
        const Scale scale{dpi};
        for (int length = -300; length < 300; ++length) {
            ASSERT_EQ(scale.at96(scale.px(length)), length) << dpi;
        }
    }
    const Scale twice{192};
    EXPECT_EQ(twice.at96(PixelRect{20, 40, 2360, 245}), (PixelRect{10, 20, 1180, 123}));
    EXPECT_EQ(twice.at96(PixelSize{308, 49}), (PixelSize{154, 25}));
    EXPECT_EQ(Scale{72}.at96(-9), -12) << "fewer dots, too";
}

} // namespace torvane
