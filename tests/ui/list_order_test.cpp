// The drive list sorted, its columns as the user has drawn them, and the way from a finding in the log to its drive.

#include "tests/ui/driver/input.h"
#include "tests/ui/expect_soon.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

#include <commctrl.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace torvane::driver {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;

constexpr int kSortAsScanned = 1411;
constexpr int kSortByModel = 1412;
constexpr int kSortBySize = 1415;
constexpr int kGoToDrive = 1418;
constexpr int kLogLabel = 1410;

class ListOrderTest : public UiTest {
  protected:
    void SetUp() override {
        UiTest::SetUp();
        torvane().loadDrives();
    }

    [[nodiscard]] BenchFolder layOutBench() const override {
        BenchFolder folder;
        folder.drive("0", R"({"number": 0, "bus": "nvme", "size": "3 GiB", "identity": {"product": "Borea"}})");
        folder.drive("1", R"({"number": 1, "bus": "nvme", "size": "20 GiB", "identity": {"product": "CAIRN"}})");
        folder.drive("2", R"({"number": 2, "bus": "nvme", "size": "100 GiB", "identity": {"product": "Apex"}})");
        return folder;
    }

    [[nodiscard]] std::vector<std::string> models() const {
        std::vector<std::string> texts;
        const ListView list = torvane().driveList();
        for (int row = 0; row < list.rowCount(); ++row) {
            texts.push_back(list.cell(row, 0));
        }
        return texts;
    }

    void clickHeading(int column) const {
        const ListView list = torvane().driveList();
        const Window header(reinterpret_cast<HWND>(list.window().send(LVM_GETHEADER)));
        const RECT cell = list.cellRect(0, column);
        clickAt(header, {(cell.left + cell.right) / 2, centre(header.rect()).y});
    }

    void chooseActiveAndTick(int row) const {
        torvane().driveList().click(row);
        torvane().driveList().setTicked(row, true);
    }
};

TEST_F(ListOrderTest, AHeadingSortsAndAThirdClickGivesTheScansOrderAgain) {
    EXPECT_THAT(models(), ElementsAre("Borea", "CAIRN", "Apex"));
    clickHeading(0);
    EXPECT_THAT(models(), ElementsAre("Apex", "Borea", "CAIRN"));
    clickHeading(0);
    EXPECT_THAT(models(), ElementsAre("CAIRN", "Borea", "Apex"));
    clickHeading(0);
    EXPECT_THAT(models(), ElementsAre("Borea", "CAIRN", "Apex"));
    clickHeading(3);
    clickHeading(3);
    EXPECT_THAT(models(), ElementsAre("Apex", "CAIRN", "Borea")) << "100 GB is more than 20";
}

TEST_F(ListOrderTest, TicksSelectionAndStatusGoWithTheirDrive) {
    chooseActiveAndTick(1);
    torvane().command(kSortByModel);
    const ListView list = torvane().driveList();
    ASSERT_THAT(models(), ElementsAre("Apex", "Borea", "CAIRN"));
    EXPECT_FALSE(list.ticked(0) || list.ticked(1));
    EXPECT_TRUE(list.ticked(2));
    EXPECT_TRUE(list.selected(2));
    EXPECT_FALSE(list.selected(1));
    // The active drive is still the one that was chosen: the viewer names it.
    torvane().press(kQuickDiskView);
    const Window viewer = program().awaitDialog();
    EXPECT_THAT(viewer.text(), ::testing::HasSubstr("CAIRN"));
    viewer.post(WM_CLOSE);
    await("the viewer closes", [&] { return !viewer.visible(); });
}

TEST_F(ListOrderTest, TheMenuSortsToo) {
    torvane().command(kSortBySize);
    torvane().command(kSortBySize);
    EXPECT_THAT(models(), ElementsAre("Apex", "CAIRN", "Borea"));
    torvane().command(kSortAsScanned);
    EXPECT_THAT(models(), ElementsAre("Borea", "CAIRN", "Apex"));
}

TEST_F(ListOrderTest, AScanListsTheDrivesInItsOwnOrder) {
    torvane().command(kSortByModel);
    ASSERT_THAT(models(), ElementsAre("Apex", "Borea", "CAIRN"));
    torvane().loadDrives();
    EXPECT_THAT(models(), ElementsAre("Borea", "CAIRN", "Apex"));
}

TEST_F(ListOrderTest, TheLogsButtonHasItsLabel) {
    const Window label = program().mainWindow().child(kLogLabel);
    EXPECT_EQ(label.text(), "Event l&og:");
    EXPECT_TRUE(label.visible());
    const RECT place = label.rect();
    const RECT button = program().mainWindow().child(kLogToggle).rect();
    EXPECT_LT(place.right, button.left);
    EXPECT_LT(button.left - place.right, 20);
    EXPECT_TRUE(place.top >= button.top && place.bottom <= button.bottom);
}

/// A drive whose report has a finding, behind one that has none.
class GoToDriveTest : public UiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override { return BenchFolder::demo(); }
};

TEST_F(GoToDriveTest, AFindingInTheLogLeadsToItsDrivesRow) {
    torvane().loadDrives();
    torvane().setLogOpen(true);
    const ListView log = torvane().logList();
    const ListView drives = torvane().driveList();
    int row = 0;
    while (row < log.rowCount() && log.cell(row, 3).find("] Found Value [") == std::string::npos) {
        ++row;
    }
    ASSERT_LT(row, log.rowCount());
    const std::string message = log.cell(row, 3);
    const std::string model = message.substr(1, message.find(']') - 1);
    log.click(row, 3);
    torvane().command(kGoToDrive);
    const int drive = drives.rowWith(0, model);
    EXPECT_TRUE(drives.selected(drive));
    EXPECT_EQ(focused(program().mainWindow()).handle(), drives.window().handle());

    log.click(0, 3);
    torvane().command(kGoToDrive);
    EXPECT_TRUE(drives.selected(drive)) << "a row that tells of no drive leads nowhere";
}

TEST(ColumnWidthsTest, AreKeptOnlyOnceTheUserHasDrawnThem) {
    const Launch launch = freshRun("ColumnWidths.Kept", pairBench());
    const fs::path kept = launch.program.parent_path() / "Columns.txt";
    const auto run = [&](const auto& act) {
        Program program(launch);
        const TorvaneWindow torvane(program);
        act(torvane);
        torvane.window().post(WM_CLOSE);
        program.awaitBox().answer("Yes");
        program.awaitEnd();
    };
    run([](const TorvaneWindow& torvane) { EXPECT_EQ(torvane.driveList().columnWidth(0), 250); });
    EXPECT_FALSE(fs::exists(kept));
    run([](const TorvaneWindow& torvane) { torvane.driveList().window().send(LVM_SETCOLUMNWIDTH, 0, 301); });
    EXPECT_EQ(readFile(kept), "Drives 301 150 90 85 120 460\r\nLog 100 100 100 850\r\n");
    run([](const TorvaneWindow& torvane) { EXPECT_EQ(torvane.driveList().columnWidth(0), 301); });
    std::ofstream(kept, std::ios::binary) << "Drives 301 150";
    run([](const TorvaneWindow& torvane) { EXPECT_EQ(torvane.driveList().columnWidth(0), 250); });
    EXPECT_EQ(readFile(kept), "Drives 301 150") << "nothing was changed";
}

} // namespace
} // namespace torvane::driver
