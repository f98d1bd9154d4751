// How the rows of the main window's lists are carried away: context menus, Ctrl+C, the log as text.

#include "tests/ui/clipboard.h"
#include "tests/ui/driver/input.h"
#include "tests/ui/driver/shell_dialogs.h"
#include "tests/ui/expect_soon.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace torvane::driver {
namespace {

namespace fs = std::filesystem;

constexpr WORD kRowKey = 'R';
constexpr WORD kSerialNumberKey = 'N';
constexpr WORD kAllKey = 'A';
constexpr WORD kSaveKey = 'S';

std::string joined(const std::vector<std::string>& texts, const char* between) {
    std::string all;
    for (const std::string& text : texts) {
        all += (all.empty() ? "" : between) + text;
    }
    return all;
}

std::string lineOf(const ListView& list, int row) {
    std::string line = list.cell(row, 0);
    for (int column = 1; column < list.columnCount(); ++column) {
        line += "\t" + list.cell(row, column);
    }
    return line;
}

std::string linesOf(const ListView& list) {
    std::vector<std::string> lines;
    for (int row = 0; row < list.rowCount(); ++row) {
        lines.push_back(lineOf(list, row));
    }
    return joined(lines, "\r\n");
}

class ListRowsTest : public UiTest {
  protected:
    void SetUp() override {
        UiTest::SetUp();
        torvane().loadDrivesOnce();
        torvane().setLogOpen(true);
        const Clipboard clipboard;
        Clipboard::empty();
    }

    [[nodiscard]] static bool menuIsOpen() { return Window(FindWindowA("#32768", nullptr)).visible(); }
    void choose(const ListView& list, int row, WORD key) const {
        bringToFront(program().mainWindow());
        clickAt(list.window(), centre(list.cellRect(row, 1)), MouseButton::kRight);
        await("the menu opens", [] { return menuIsOpen(); });
        pressKey(program().mainWindow(), key);
        await("the menu closes", [] { return !menuIsOpen(); });
    }
    void expectCopied(const std::string& text) const {
        program().mainWindow().settle();
        expectSoon([&] { EXPECT_EQ(clipboardText(), text); });
        expectNoBox();
    }
};

TEST_F(ListRowsTest, ADrivesRowAndItsSerialNumberAreCopied) {
    const ListView drives = torvane().driveList();
    choose(drives, 1, kSerialNumberKey);
    expectCopied(drives.cell(1, 1));
    choose(drives, 0, kRowKey);
    expectCopied(lineOf(drives, 0));
    drives.click(1);
    pressKey(program().mainWindow(), 'C', VK_CONTROL);
    expectCopied(lineOf(drives, 1));
}

TEST_F(ListRowsTest, WithoutARowNothingIsCopied) {
    leaveProgramUsed();
    restart(layOutBench());
    for (const int id : {kMenuCopyDriveRow, kMenuCopySerialNumber, kMenuCopyLogRows}) {
        torvane().command(id);
        expectCopied("(nothing)");
    }
}

TEST_F(ListRowsTest, RowsOfTheLogAreCopiedAloneAndTogether) {
    const ListView log = torvane().logList();
    ASSERT_GE(log.rowCount(), 2);
    choose(log, 0, kRowKey);
    expectCopied(lineOf(log, 0));
    choose(log, 1, kAllKey);
    EXPECT_TRUE(log.selected(0) && log.selected(log.rowCount() - 1));
    pressKey(program().mainWindow(), 'C', VK_CONTROL);
    expectCopied(linesOf(log));
    log.click(1);
    EXPECT_FALSE(log.selected(0));
    pressKey(program().mainWindow(), 'A', VK_CONTROL);
    EXPECT_TRUE(log.selected(0));
}

TEST_F(ListRowsTest, TheLogIsSavedAsText) {
    const ListView log = torvane().logList();
    const fs::path file = program().folder() / "saved log.txt";
    fs::remove(file);
    const std::string lines = linesOf(log);
    choose(log, 0, kSaveKey);
    chooseFile(program(), file);
    expectSoon([&] { EXPECT_EQ(torvane().log().back().message.rfind("Log SAVED as [", 0), 0U); });
    std::ifstream saved(file, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(saved), {}), lines + "\r\n");
    expectNoBox();
}

TEST_F(ListRowsTest, AClipboardThatSomebodyHoldsIsToldAfterAMoment) {
    torvane().driveList().click(0);
    {
        const Clipboard held;
        pressKey(program().mainWindow(), 'C', VK_CONTROL);
        expectBox("***** NOT COPIED *****",
                  "Another program is using the clipboard. Nothing was copied. Please try again", BoxIcon::kExclamation,
                  "OK");
    }
    pressKey(program().mainWindow(), 'C', VK_CONTROL);
    expectCopied(lineOf(torvane().driveList(), 0));
}

} // namespace
} // namespace torvane::driver
