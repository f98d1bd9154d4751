#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/expect_soon.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

namespace torvane::driver {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr int kHexPane = 7410;
constexpr int kCharacterPane = 7411;
constexpr int kOffsets = 7412;
constexpr int kPosition = 7413;

class HexViewerTest : public UiTest {
  protected:
    /// Drive 1: 20 TB, each sector told by its content, two of them unreadable. Drive 2: sectors of 4096 bytes.
    [[nodiscard]] BenchFolder layOutBench() const override {
        BenchFolder folder = pairBench();
        folder.drive("1-nvme", R"({"number": 1, "bus": "nvme", "size": 20000000000000, "road": "nvme-query",
            "backing": {"pattern": "sector-number"}, "identity": {"product": "Tarn & Sons 20T", "serial": "T20"},
            "faults": {"reads": [{"firstSector": 3}]}})");
        folder.drive("2-4k", R"({"number": 2, "bus": "nvme", "size": "1 TiB", "sectorSize": 4096, "road": "nvme-query",
            "backing": {"pattern": "sector-number"}, "identity": {"product": "Brandt 4K", "serial": "B4K"}})");
        return folder;
    }

    [[nodiscard]] Window open(int drive) const {
        torvane().loadDrivesOnce();
        torvane().driveList().click(drive);
        torvane().press(kQuickDiskView);
        Window viewer = program().awaitDialog();
        bringToFront(viewer);
        return viewer;
    }
    static void close(const Window& viewer) {
        pressKey(viewer, VK_ESCAPE);
        await("the viewer has closed", [&] { return !viewer.exists(); });
    }
    static void track(const Window& viewer, int position) {
        viewer.send(WM_VSCROLL, MAKEWPARAM(SB_THUMBTRACK, position));
    }
    /// The scroll bar stands to the right of the client area.
    static RECT scrollBar(const Window& viewer) {
        const RECT area = viewer.clientRect();
        return {area.right, area.top, area.right + GetSystemMetrics(SM_CXVSCROLL), area.bottom};
    }
    static Picture scrollBarPicture(const Window& viewer) {
        parkMouse();
        viewer.awaitPainted();
        return Picture::atRest(scrollBar(viewer));
    }
    /// Expects the last byte of each row: nothing of the pane is cut off.
    static void expectInkInEveryRow(const Picture& hex) {
        const int rowHeight = hex.height() / 32;
        for (int row = 0; row < 32; ++row) {
            bool ink = false;
            for (int y = row * rowHeight; y < (row + 1) * rowHeight; ++y) {
                for (int x = hex.width() - hex.width() / 47 * 2; x < hex.width(); ++x) {
                    ink = ink || distance(hex.at(x, y), RGB(255, 255, 255)) > 200;
                }
            }
            EXPECT_TRUE(ink) << "the last byte of row " << row;
        }
    }
    /// Where the thumb stands at position 0.
    static POINT thumbAtTop(const Window& viewer) {
        const RECT bar = scrollBar(viewer);
        return {(bar.left + bar.right) / 2, bar.top + GetSystemMetrics(SM_CYVSCROLL) + 3};
    }
    static std::string characters(const Window& viewer) { return viewer.child(kCharacterPane).text(); }
    /// A sector is read on another thread, while the window goes on answering.
    static void expectShown(const Window& viewer, const std::string& beginning) {
        expectSoon([&] { EXPECT_THAT(characters(viewer), StartsWith(beginning)); });
    }

    [[nodiscard]] std::size_t badRows() const {
        std::size_t count = 0;
        for (const LogEntry& entry : torvane().log()) {
            count += entry.message.starts_with("BAD READ BLOCK") ? 1 : 0;
        }
        return count;
    }
};

TEST_F(HexViewerTest, ShowsSectorZeroFirst) {
    const Window viewer = open(1);
    EXPECT_EQ(viewer.text(), "Quick Disk View -- Tarn & Sons 20T");
    expectShown(viewer, "LBA=000000000000\nLBA=000000000000\n");
    EXPECT_THAT(viewer.child(kHexPane).text(), StartsWith("4C 42 41 3D 30 30 30 30 30 30 30 30 30 30 30 30 \n"));
    EXPECT_THAT(viewer.child(kOffsets).text(), StartsWith("000\n010\n"));
    EXPECT_EQ(viewer.child(kPosition).text(), "Sector 0 of 0 to 39062499999    byte offset 0x0");
    EXPECT_EQ(characters(viewer).size(), 32U * 17);
    EXPECT_EQ(viewer.child(kHexPane).text().size(), 32U * 49);
    pressKey(viewer, VK_PRIOR);
    expectShown(viewer, "LBA=000000000000");
    close(viewer);
}

TEST_F(HexViewerTest, PanesStandSideBySideInAFixedPitchFont) {
    const Window viewer = open(1);
    const RECT area = viewer.clientRect();
    const std::vector<int> panes = {kOffsets, kHexPane, kCharacterPane};
    LONG right = area.left;
    for (const int pane : panes) {
        const RECT place = viewer.child(pane).rect();
        EXPECT_TRUE(inside(place, area)) << toText(place) << " in " << toText(area);
        EXPECT_GT(place.left, right);
        EXPECT_EQ(place.top, viewer.child(kOffsets).rect().top);
        EXPECT_EQ(height(place) % 32, 0);
        right = place.right;
    }
    parkMouse();
    expectSoon([&] { EXPECT_EQ(toText(Picture::ofScreen(area).commonest()), toText(RGB(255, 255, 255))); });
    expectSoon([&] { expectInkInEveryRow(Picture::ofScreen(viewer.child(kHexPane).rect())); });
    close(viewer);
}

TEST_F(HexViewerTest, PageKeysStepAndLeaveTheScrollBar) {
    const Window viewer = open(1);
    const Picture atTop = scrollBarPicture(viewer);
    pressKey(viewer, VK_NEXT);
    expectShown(viewer, "LBA=000000000001");
    pressKey(viewer, VK_NEXT);
    expectShown(viewer, "LBA=000000000002");
    pressKey(viewer, VK_PRIOR);
    expectShown(viewer, "LBA=000000000001");
    EXPECT_TRUE(scrollBarPicture(viewer) == atTop) << "the scroll bar moved";
    for (const int key : {VK_DOWN, VK_UP, VK_HOME, VK_END, VK_RETURN, VK_TAB}) {
        pressKey(viewer, static_cast<WORD>(key));
        expectShown(viewer, "LBA=000000000001");
    }
    pressKey(viewer, VK_NEXT);
    expectShown(viewer, "LBA=000000000002"); // else the keyboard went astray
    close(viewer);
}

TEST_F(HexViewerTest, ThumbJumpsOverTwentyTerabytes) {
    const Window viewer = open(1);
    const Picture atTop = scrollBarPicture(viewer);
    track(viewer, 16000);
    expectSoon([&] { EXPECT_TRUE(scrollBarPicture(viewer) != atTop) << "the scroll bar did not follow"; });
    expectShown(viewer, "LBA=019531250000");
    track(viewer, 31991);
    expectShown(viewer, "LBA=039051513671");
    EXPECT_EQ(viewer.child(kPosition).text(), "Sector 39051513671 of 0 to 39062499999    byte offset 0x122F4D9E8E00");
    // The last sector.
    track(viewer, 32000);
    expectShown(viewer, "LBA=039062499999");
    pressKey(viewer, VK_NEXT);
    expectShown(viewer, "LBA=039062499999");
    pressKey(viewer, VK_PRIOR);
    expectShown(viewer, "LBA=039062499998");
    close(viewer);
}

// The range is 0 to 32000 and the page 10, so the thumb's last position is 31991.
TEST_F(HexViewerTest, DraggedThumbReachesFromEndToEnd) {
    const Window viewer = open(1);
    const POINT top = thumbAtTop(viewer);
    const POINT bottom{top.x, scrollBar(viewer).bottom - 2};
    drag(viewer, top, bottom);
    expectShown(viewer, "LBA=039051513671");
    close(viewer);
}

TEST_F(HexViewerTest, OtherScrollRequestsDoNothing) {
    const Window viewer = open(1);
    track(viewer, 16000);
    const Picture inTheMiddle = scrollBarPicture(viewer);
    for (const int request : {SB_LINEDOWN, SB_LINEUP, SB_PAGEDOWN, SB_PAGEUP, SB_TOP, SB_BOTTOM, SB_THUMBPOSITION}) {
        viewer.send(WM_VSCROLL, MAKEWPARAM(request, 5));
        expectShown(viewer, "LBA=019531250000");
        EXPECT_TRUE(scrollBarPicture(viewer) == inTheMiddle);
    }
    close(viewer);
}

TEST_F(HexViewerTest, UnreadableSectorIsMarkedAndLoggedEachTime) {
    const Window viewer = open(1);
    const std::size_t before = badRows();
    for (int i = 0; i < 3; ++i) {
        pressKey(viewer, VK_NEXT);
    }
    std::string marked;
    for (int row = 0; row < 32; ++row) {
        marked += "KVL<->UNREADABLE\n";
    }
    expectShown(viewer, marked);
    EXPECT_THAT(viewer.child(kHexPane).text(), StartsWith("4B 56 4C 3C 2D 3E 55 4E 52 45 41 44 41 42 4C 45 \n"));
    EXPECT_EQ(badRows(), before + 1);
    EXPECT_EQ(torvane().log().back().message, "BAD READ BLOCK AT SECTOR: [3]");
    pressKey(viewer, VK_NEXT);
    expectShown(viewer, "LBA=000000000004");
    pressKey(viewer, VK_PRIOR);
    expectShown(viewer, marked);
    EXPECT_EQ(badRows(), before + 2);
    close(viewer);
}

TEST_F(HexViewerTest, LargeSectorsShowTheirBeginning) {
    const Window viewer = open(2);
    pressKey(viewer, VK_NEXT);
    expectShown(viewer, "LBA=000000000008\n");
    EXPECT_EQ(viewer.child(kPosition).text(), "Sector 1 of 0 to 268435455    byte offset 0x1000");
    EXPECT_THAT(program().benchLog({"target=drive:2", "request=read"}).back(), HasSubstr("offset=4096 length=4096"));
    close(viewer);
}

} // namespace
} // namespace torvane::driver
