#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/expect_soon.h"
#include "tests/ui/ui_test.h"

#include <commctrl.h>

namespace torvane::driver {
namespace {

constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kListBackground = RGB(136, 196, 236);

struct Paint {
    COLORREF text;
    COLORREF background;
};

constexpr Paint kPlain{RGB(0, 0, 128), RGB(80, 175, 228)};
constexpr Paint kQuiet{RGB(45, 99, 119), kListBackground};
constexpr Paint kGood{kWhite, RGB(13, 119, 0)};
constexpr Paint kBad{kWhite, RGB(224, 0, 7)};
constexpr Paint kWarning{kWhite, RGB(248, 198, 1)};
constexpr Paint kSelected{kWhite, RGB(0, 51, 102)};
constexpr Paint kRestingSelected{kWhite, RGB(52, 86, 130)};

/// The colour of the picture's pixels that lies farthest from its background: that of the letters' strokes.
COLORREF strokeColour(const Picture& picture, COLORREF background) {
    COLORREF farthest = background;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (distance(picture.at(x, y), background) > distance(farthest, background)) {
                farthest = picture.at(x, y);
            }
        }
    }
    return farthest;
}

class ListTest : public UiTest {
  protected:
    /// The cell without its grid lines.
    static Picture pictureOf(const ListView& list, int row, int column) {
        RECT cell = list.cellRect(row, column);
        InflateRect(&cell, -2, -2);
        list.window().settle();
        return Picture::ofScreen(cell);
    }

    static void expectPaint(const ListView& list, int row, int column, const Paint& paint) {
        const std::string where =
            "row " + std::to_string(row) + " '" + list.cell(row, column) + "', column " + std::to_string(column);
        const bool written = !list.cell(row, column).empty();
        expectSoon([&] {
            const Picture picture = pictureOf(list, row, column);
            EXPECT_EQ(toText(picture.commonest()), toText(paint.background)) << where;
            if (written) {
                EXPECT_EQ(toText(strokeColour(picture, paint.background)), toText(paint.text)) << where;
            }
        });
    }

    void loadOnce() const {
        torvane().loadDrivesOnce();
        parkMouse();
    }

    [[nodiscard]] bool someDriveIsActive() const {
        torvane().press(kQuickDiskView);
        const Window opened = program().awaitDialog();
        const bool refused = opened.text() == "***** NO ACTIVE DRIVE *****";
        if (refused) {
            MessageBoxWindow(opened).answer("OK");
        } else {
            opened.post(WM_CLOSE);
            await("the viewer closes", [&] { return !opened.visible(); });
        }
        return !refused;
    }
};

TEST_F(ListTest, DriveListHasItsPlaceAndStyle) {
    const ListView list = torvane().driveList();
    const RECT place = list.window().rectIn(program().mainWindow());
    EXPECT_EQ(toText(place), "(10,20)-(1180,122)");
    constexpr DWORD kExtended = LVS_EX_GRIDLINES | LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT;
    EXPECT_EQ(list.extendedStyle() & kExtended, kExtended);
    EXPECT_EQ(list.window().style() & LVS_TYPEMASK, LVS_REPORT);
    EXPECT_NE(list.window().style() & LVS_SINGLESEL, 0);
    EXPECT_EQ(toText(list.background()), toText(kListBackground));
}

TEST_F(ListTest, LogListHasItsStyle) {
    const ListView list = torvane().logList();
    constexpr DWORD kExtended = LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT;
    EXPECT_EQ(list.extendedStyle() & (kExtended | LVS_EX_CHECKBOXES), kExtended);
    EXPECT_EQ(list.window().style() & LVS_TYPEMASK, LVS_REPORT);
    EXPECT_EQ(toText(list.background()), toText(kListBackground));
}

TEST_F(ListTest, TickingDoesNotChooseTheActiveDrive) {
    torvane().loadDrives(); // no drive is active after it
    const ListView list = torvane().driveList();
    list.clickCheckBox(1);
    await("the row is ticked", [&] { return list.ticked(1); });
    EXPECT_FALSE(someDriveIsActive());
    list.clickCheckBox(1);
    await("the row is no longer ticked", [&] { return !list.ticked(1); });
    EXPECT_FALSE(someDriveIsActive());
}

TEST_F(ListTest, ClickingARowMakesItsDriveActiveAndTicksNothing) {
    loadOnce();
    const ListView list = torvane().driveList();
    list.click(1);
    EXPECT_TRUE(list.selected(1));
    EXPECT_FALSE(list.ticked(1));
    EXPECT_TRUE(someDriveIsActive());
}

TEST_F(ListTest, OnlyOneRowIsSelectedAtATime) {
    loadOnce();
    const ListView list = torvane().driveList();
    for (int column = 0; column < list.columnCount(); ++column) {
        const int row = column % list.rowCount();
        list.click(row, column);
        for (int other = 0; other < list.rowCount(); ++other) {
            EXPECT_EQ(list.selected(other), other == row) << "clicked column " << column;
        }
    }
}

TEST_F(ListTest, ClickBelowTheRowsChoosesNothing) {
    torvane().loadDrives(); // no drive is active after it
    const ListView list = torvane().driveList();
    const RECT last = list.cellRect(list.rowCount() - 1, 1);
    const RECT area = list.window().clientRect();
    ASSERT_LT(last.bottom + 3, area.bottom);
    clickAt(list.window(), {last.left + 5, last.bottom + 2});
    EXPECT_FALSE(someDriveIsActive());
}

TEST_F(ListTest, ArrowKeysMoveTheActiveDrive) {
    loadOnce();
    const ListView list = torvane().driveList();
    list.click(0);
    pressKey(list.window(), VK_DOWN);
    EXPECT_TRUE(list.selected(1));
    EXPECT_TRUE(someDriveIsActive());
}

/// Models that begin with the words that are painted in signal colours.
class CellColourTest : public ListTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        BenchFolder folder;
        int number = 0;
        for (const char* model : {"PLAIN", "SUCCESS 1", "FAILING 2", "ERRATIC 3", "WARNER 4", "warner 5", "TESTER 6"}) {
            folder.drive(model, R"({"bus": "nvme", "size": "1 GiB", "number": )" + std::to_string(number) +
                                    R"(, "identity": {"product": ")" + model + R"(", "serial": "ERR)" +
                                    std::to_string(number) + "\"}}");
            ++number;
        }
        folder.drive("z", R"({"number": 9, "bus": "mmc", "size": "1 GiB", "identity": {"product": "CARD"}})");
        return folder;
    }
};

TEST_F(CellColourTest, ModelIsPaintedByItsFirstWord) {
    loadOnce();
    const ListView list = torvane().driveList();
    ASSERT_EQ(list.rowCount(), 7);
    expectPaint(list, list.rowWith(0, "PLAIN"), 0, kQuiet);
    expectPaint(list, list.rowWith(0, "SUCCESS 1"), 0, kGood);
    expectPaint(list, list.rowWith(0, "FAILING 2"), 0, kBad);
    expectPaint(list, list.rowWith(0, "ERRATIC 3"), 0, kBad);
    expectPaint(list, list.rowWith(0, "WARNER 4"), 0, kWarning);
    expectPaint(list, list.rowWith(0, "warner 5"), 0, kQuiet);
    expectPaint(list, list.rowWith(0, "TESTER 6"), 0, kQuiet);
}

TEST_F(CellColourTest, OtherDriveColumnsKeepTheirColours) {
    loadOnce();
    const ListView list = torvane().driveList();
    for (const char* model : {"PLAIN", "FAILING 2", "WARNER 4"}) {
        const int row = list.rowWith(0, model);
        expectPaint(list, row, 1, kQuiet); // the serial numbers begin with ERR
        expectPaint(list, row, 2, kPlain);
        expectPaint(list, row, 3, kPlain);
        expectPaint(list, row, 4, kPlain);
        expectPaint(list, row, 5, kQuiet);
    }
}

TEST_F(CellColourTest, SelectedRowIsAsPlainWithoutTheKeyboardAndKeepsWhatItsColoursTell) {
    loadOnce();
    const ListView list = torvane().driveList();
    const int row = list.rowWith(0, "FAILING 2");
    list.click(row);
    parkMouse();
    expectPaint(list, row, 0, kBad);
    for (const int column : {1, 2, 5}) {
        expectPaint(list, row, column, kSelected);
    }
    pressKey(program().mainWindow(), VK_TAB);
    ASSERT_NE(focused(program().mainWindow()).handle(), list.window().handle());
    expectPaint(list, row, 0, kBad);
    expectPaint(list, row, 1, kRestingSelected);
    list.click(list.rowWith(0, "PLAIN"));
    parkMouse();
    expectPaint(list, row, 1, kQuiet);
}

TEST_F(CellColourTest, LogRowIsPaintedInItsTypeCellOnly) {
    loadOnce();
    torvane().setLogOpen(true);
    parkMouse();
    const ListView log = torvane().logList();
    const int failure = log.rowWith(0, "FAILURE");
    const int status = log.rowWith(0, "STATUS");
    expectPaint(log, failure, 0, kBad);
    expectPaint(log, status, 0, kQuiet);
    for (int column = 1; column < log.columnCount(); ++column) {
        expectPaint(log, failure, column, kPlain);
        expectPaint(log, status, column, kPlain);
    }
}

TEST_F(CellColourTest, ColoursStayAfterScrolling) {
    loadOnce();
    const ListView list = torvane().driveList();
    expectPaint(list, list.rowWith(0, "TESTER 6"), 0, kQuiet);
    expectPaint(list, list.rowWith(0, "SUCCESS 1"), 0, kGood);
    expectPaint(list, list.rowWith(0, "WARNER 4"), 0, kWarning);
}

/// The same with the system's high contrast, white on black.
class HighContrastTest : public CellColourTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        return CellColourTest::layOutBench().bench(R"({"highContrast": true})");
    }

    static constexpr COLORREF kBlack = RGB(0, 0, 0);
    static constexpr Paint kSystems{kWhite, kBlack};
};

TEST_F(HighContrastTest, ListsHaveTheSystemsColoursWhateverTheirWordsTell) {
    loadOnce();
    const ListView list = torvane().driveList();
    EXPECT_EQ(toText(list.background()), toText(kBlack));
    for (const char* const model : {"PLAIN", "SUCCESS 1", "FAILING 2", "WARNER 4"}) {
        expectPaint(list, list.rowWith(0, model), 0, kSystems);
        expectPaint(list, list.rowWith(0, model), 2, kSystems);
    }
}

TEST_F(HighContrastTest, WindowAndPanelLieUponTheSystemsGround) {
    loadOnce();
    const Window label = torvane().window().child(kDrivesLabel);
    label.awaitPainted();
    expectSoon([&] {
        const Picture text = Picture::ofScreen(label.rect());
        EXPECT_EQ(toText(text.commonest()), toText(kBlack));
        EXPECT_GT(text.count(kWhite), 20);
    });
    const RECT window = torvane().window().rect();
    const RECT beside{window.left + 1020, window.top + 180, window.left + 1050, window.top + 260};
    expectSoon([&] { EXPECT_EQ(toText(Picture::ofScreen(beside).commonest()), toText(kBlack)); });
}

} // namespace
} // namespace torvane::driver
