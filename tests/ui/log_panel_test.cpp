#include "tests/ui/ui_test.h"

namespace torvane::driver {
namespace {

class LogPanelTest : public UiTest {
  protected:
    void SetUp() override {
        UiTest::SetUp();
        torvane().setLogOpen(false);
    }

    [[nodiscard]] Window window() const { return program().mainWindow(); }
    [[nodiscard]] std::string buttonText() const { return window().child(kLogToggle).text(); }
    [[nodiscard]] Window list() const { return window().child(kLogList); }
};

void expectSize(const Window& window, int expectedWidth, int expectedHeight) {
    EXPECT_EQ(width(window.rect()), expectedWidth);
    EXPECT_EQ(height(window.rect()), expectedHeight);
}

// The first test of the suite: nothing was pressed before.
TEST_F(LogPanelTest, StartsClosed) {
    EXPECT_FALSE(list().visible());
    EXPECT_EQ(buttonText(), "<");
    expectSize(window(), 1190, 440);
}

TEST_F(LogPanelTest, OpensBelowTheWindow) {
    const RECT before = window().rect();
    const LONG closedInside = height(window().clientRect());
    torvane().press(kLogToggle);
    EXPECT_TRUE(list().visible());
    EXPECT_EQ(buttonText(), "<");
    expectSize(window(), 1190, 620);
    EXPECT_EQ(window().rect().left, before.left);
    EXPECT_EQ(window().rect().top, before.top);
    const RECT place = list().rectIn(window());
    EXPECT_EQ(place.left, 10);
    EXPECT_EQ(place.right, 1180);
    EXPECT_EQ(place.top, closedInside);
    EXPECT_EQ(height(place), 162);
}

TEST_F(LogPanelTest, ClosesAgain) {
    torvane().press(kLogToggle);
    const RECT before = window().rect();
    torvane().press(kLogToggle);
    EXPECT_FALSE(list().visible());
    EXPECT_EQ(buttonText(), ">");
    expectSize(window(), 1190, 440);
    EXPECT_EQ(window().rect().left, before.left);
    EXPECT_EQ(window().rect().top, before.top);
}

TEST_F(LogPanelTest, WholeLogIsInsideTheOpenWindow) {
    torvane().press(kLogToggle);
    EXPECT_LE(list().rect().bottom, window().clientRect().bottom);
}

TEST_F(LogPanelTest, LogGrowsWhileItIsHidden) {
    torvane().loadDrives();
    const int rows = torvane().logList().rowCount();
    EXPECT_GE(rows, 2);
    torvane().press(kLogToggle);
    EXPECT_EQ(torvane().logList().rowCount(), rows);
    const ListView list = torvane().logList();
    RECT last = list.cellRect(rows - 1, 3);
    EXPECT_TRUE(inside({last.left, last.top, last.left + 1, last.bottom}, list.window().rect()));
}

TEST_F(LogPanelTest, EveryRowHasTheFourColumns) {
    const ListView list = torvane().logList();
    const std::vector<std::pair<std::string, int>> columns{
        {"Type", 100}, {"Date", 100}, {"Time", 100}, {"Message", 850}};
    ASSERT_EQ(list.columnCount(), static_cast<int>(columns.size()));
    for (int column = 0; column < list.columnCount(); ++column) {
        EXPECT_EQ(list.heading(column), columns[static_cast<std::size_t>(column)].first);
        EXPECT_EQ(list.columnWidth(column), columns[static_cast<std::size_t>(column)].second);
    }
}

} // namespace
} // namespace torvane::driver
