#include "base/window_fit.h"

#include <gtest/gtest.h>

namespace torvane {

void PrintTo(const WindowFit& fit, std::ostream* stream) {
    *stream << fit.page.width << " x " << fit.page.height << (fit.horizontal ? " below" : "")
            << (fit.vertical ? " right" : "");
}

namespace {

constexpr PixelSize kBars{17, 18};

TEST(WindowFit, ShowsAllOfWhatFits) {
    EXPECT_EQ(fitInto({1174, 381}, {1174, 381}, kBars), (WindowFit{{1174, 381}, false, false}));
    EXPECT_EQ(fitInto({100, 50}, {1366, 768}, kBars), (WindowFit{{100, 50}, false, false}));
}

TEST(WindowFit, ScrollsInTheDirectionThatIsTooShort) {
    EXPECT_EQ(fitInto({1468, 476}, {1350, 720}, kBars), (WindowFit{{1350, 476}, true, false}));
    EXPECT_EQ(fitInto({800, 900}, {1350, 720}, kBars), (WindowFit{{800, 720}, false, true}));
    EXPECT_EQ(fitInto({1468, 900}, {1350, 720}, kBars), (WindowFit{{1333, 702}, true, true}));
}

TEST(WindowFit, OneBarCallsForTheOther) {
    EXPECT_EQ(fitInto({1340, 900}, {1350, 720}, kBars), (WindowFit{{1333, 702}, true, true}))
        << "beside the bar at the right the width is too short";
    EXPECT_EQ(fitInto({1468, 710}, {1350, 720}, kBars), (WindowFit{{1333, 702}, true, true}))
        << "above the bar below the height is too short";
}

TEST(WindowFit, NeverLessThanNothing) {
    EXPECT_EQ(fitInto({100, 100}, {10, 10}, kBars), (WindowFit{{0, 0}, true, true}));
}

TEST(WindowFit, ScrollsNoFurtherThanTheContent) {
    EXPECT_EQ(scrollPosition(-5, 1468, 1350), 0);
    EXPECT_EQ(scrollPosition(60, 1468, 1350), 60);
    EXPECT_EQ(scrollPosition(500, 1468, 1350), 118);
    EXPECT_EQ(scrollPosition(500, 300, 1350), 0) << "all of it shows";
}

TEST(WindowFit, BringsWhatIsOutOfSightIntoView) {
    EXPECT_EQ(scrollToShow(0, 1000, 900, 1000, 8), 0) << "shows already";
    EXPECT_EQ(scrollToShow(0, 1000, 950, 1050, 8), 58);
    EXPECT_EQ(scrollToShow(200, 1000, 150, 250, 8), -58);
    EXPECT_EQ(scrollToShow(0, 100, 60, 350, 8), 52) << "its beginning";
    EXPECT_EQ(scrollToShow(400, 100, 60, 350, 8), -348) << "its beginning";
    EXPECT_EQ(scrollToShow(0, 100, 20, 350, 8), 0) << "shows already as much as can";
    EXPECT_EQ(scrollToShow(100, 100, 20, 350, 8), 0) << "so it does";
}

} // namespace
} // namespace torvane
