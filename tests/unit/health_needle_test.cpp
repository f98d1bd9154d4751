#include "health/needle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>

namespace torvane {

void PrintTo(const PanelPoint& point, std::ostream* out) {
    *out << "(" << point.x << ", " << point.y << ")";
}

namespace {

constexpr PanelPoint kPivot{70, 194};
constexpr double kLength = 55.0;

PanelPoint endOf(double value) {
    return NeedleEndPoint(value, kLength, kPivot);
}

/// The needle's length as drawn, within the pixel that truncation takes.
double drawnLength(double value) {
    const PanelPoint end = NeedleEndPoint(value, 55000.0, {0, 0});
    return std::hypot(end.x, end.y) / 1000.0;
}

TEST(Needle, PointsLeftAtZero) {
    EXPECT_EQ(endOf(0.0), (PanelPoint{15, 194}));
}

TEST(Needle, PointsRightAtFullScale) {
    EXPECT_EQ(endOf(1.0), (PanelPoint{124, 193}));
}

TEST(Needle, StandsJustLeftOfUprightInTheMiddle) {
    EXPECT_EQ(endOf(30000 / 60000.0), (PanelPoint{69, 147}));
}

TEST(Needle, StaysAtFullScaleBeyondIt) {
    for (const double value : {1.0000001, 2.5, 100.0, 1e300, std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(endOf(value), endOf(1.0)) << value;
    }
}

TEST(Needle, IsShorterInTheShallowMiddleOfTheFace) {
    for (const double value : {0.0, 0.19, 0.1999999, 0.8, 0.81, 1.0}) {
        EXPECT_NEAR(drawnLength(value), 55.0, 0.01) << value;
    }
    for (const double value : {0.2, 0.21, 0.5, 0.79, 0.7999999}) {
        EXPECT_NEAR(drawnLength(value), 46.75, 0.01) << value;
    }
}

TEST(Needle, LiesAlmostFlatForASmallValue) {
    EXPECT_EQ(endOf(20000 / 2000000.0), (PanelPoint{15, 192}));
}

TEST(Needle, TurnsByDegreesOfThreePointOneFour) {
    // With pi itself the middle would be exactly upright, and full scale exactly level.
    EXPECT_EQ(NeedleEndPoint(0.5, 1e6, {0, 0}), (PanelPoint{-676, -849999}));
    EXPECT_EQ(NeedleEndPoint(1.0, 1e6, {0, 0}), (PanelPoint{999998, -1592}));
}

TEST(Needle, MovesWithItsPivot) {
    for (const int x : {250, 430, 610, 790, 970}) {
        EXPECT_EQ(NeedleEndPoint(0.0, kLength, {x, 194}), (PanelPoint{x - 55, 194}));
        EXPECT_EQ(NeedleEndPoint(100.0, kLength, {x, 194}), (PanelPoint{x + 54, 193}));
    }
}

TEST(Needle, PointsLeftForAValueThatIsNoNumber) {
    EXPECT_EQ(endOf(std::numeric_limits<double>::quiet_NaN()), endOf(0.0));
    EXPECT_EQ(endOf(-std::numeric_limits<double>::infinity()), endOf(0.0));
}

TEST(Needle, FollowsANegativeValueBelowTheLevel) {
    const PanelPoint end = endOf(-0.02);
    EXPECT_EQ(end, (PanelPoint{15, 197}));
}

} // namespace
} // namespace torvane
