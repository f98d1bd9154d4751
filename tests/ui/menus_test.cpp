#include "tests/ui/driver/input.h"
#include "tests/ui/driver/shell_dialogs.h"
#include "tests/ui/driver/shipped_resources.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

#include <array>
#include <filesystem>
#include <fstream>

namespace torvane::driver {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::SizeIs;

std::vector<std::string> describe(const std::vector<MenuItem>& items) {
    std::vector<std::string> lines;
    lines.reserve(items.size());
    for (const MenuItem& item : items) {
        lines.push_back(std::to_string(item.id) + " " + withoutAccessKey(item.text));
    }
    return lines;
}

TEST(ShippedMenuTest, BarHasASpaceThePopupAndHelp) {
    const std::vector<MenuItem> bar = shippedMainMenu();
    ASSERT_THAT(bar, SizeIs(3));
    EXPECT_EQ(bar[0].id, kMenuSpace);
    EXPECT_GT(bar[0].text.size(), 40U);
    EXPECT_EQ(bar[0].text.find_first_not_of(' '), std::string::npos);
    EXPECT_EQ(withoutAccessKey(bar[1].text), "Extended Functions");
    EXPECT_EQ(describe({bar[2]}), std::vector<std::string>{"32813 Help"});
}

TEST(ShippedMenuTest, ExtendedFunctionsAreThree) {
    EXPECT_THAT(
        describe(shippedMainMenu().at(1).items),
        ElementsAre("32810 Detect Bitlocker", "32811 Create Tech Portable USB", "0 ", "32800 Company Information"));
}

TEST(ShippedStringTest, TellsOfSocketsThatCannotBeStarted) {
    EXPECT_EQ(shippedString(103), "Windows sockets initialization failed.");
}

/// Commands that open a page of the vendor's site.
class WebPageTest : public UiTest {
  protected:
    /// Runs `choose` and expects exactly one powershell with that page's address.
    template <typename Choose>
    void expectPage(const std::string& page, Choose choose) {
        const std::size_t before = pages().size();
        choose();
        const std::string opened = "opened=\"" TORVANE_VENDOR_SITE + page + "\"";
        await("powershell has opened the page", [&] {
            return pages().size() > before && !program().benchLog({"request=powershell", opened}).empty();
        });
        ASSERT_THAT(pages(), SizeIs(before + 1));
        EXPECT_THAT(pages().back(),
                    HasSubstr("command-line=\"powershell Start-Process " TORVANE_VENDOR_SITE + page + "\""));
        EXPECT_TRUE(std::filesystem::exists(program().folder() / "WorkFile.txt"));
        torvane().window().settle();
        expectNoBox();
    }

    [[nodiscard]] std::vector<std::string> pages() const {
        return program().benchLog({"program=Torvane.exe", "request=start", "powershell"});
    }
};

TEST_F(WebPageTest, EachCommandOpensItsPageByButtonAndByMenuCommand) {
    struct Page {
        const char* name;
        int button; ///< 0: none
        int command;
        const char* page;
    };
    constexpr std::array<Page, 3> kPages{
        {{"DataServices", kDataServices, kMenuDataServices, "about-page.php"},
         {"WorkOrder", kWorkOrder, kMenuWorkOrder, "wp-content//uploads//2014//10//data-recovery-work-order.pdf"},
         {"Suggestions", 0, kMenuSuggestions, "suggestion-page.php"}}};
    for (const Page& page : kPages) {
        SCOPED_TRACE(page.name);
        if (page.button != 0) {
            expectPage(page.page, [&] { torvane().press(page.button); });
        }
        expectPage(page.page, [&] { torvane().command(page.command); });
    }
}

TEST_F(WebPageTest, HelpOfTheMenuBarOpensTheDocumentation) {
    bringToFront(program().mainWindow());
    expectPage("documentation-page.php", [this] {
        // The bar's items are the space, the popup and Help.
        const Window window = program().mainWindow();
        parkMouse();
        pressKey(window, VK_F10);
        pressKey(window, VK_RIGHT);
        pressKey(window, VK_RIGHT);
        pressKey(window, VK_RETURN);
    });
}

class MenuTest : public UiTest {};

TEST_F(MenuTest, SpaceAndUnusedCommandsDoNothing) {
    const int rows = torvane().logList().rowCount();
    for (const int id : {kMenuSpace, kMenuNothing1, kMenuNothing2}) {
        torvane().command(id);
        expectNoBox();
    }
    EXPECT_EQ(torvane().logList().rowCount(), rows);
    EXPECT_TRUE(program().benchLog({"request=start"}).empty());
}

TEST_F(MenuTest, SpaceChosenFromTheMenuBarDoesNothing) {
    const Window window = program().mainWindow();
    bringToFront(window);
    pressKey(window, VK_F10);
    pressKey(window, VK_RETURN);
    expectNoBox();
    EXPECT_TRUE(window.visible());
}

TEST_F(MenuTest, LoadDrivesCommandLoads) {
    torvane().command(kMenuLoadDrives);
    await(
        "the drives are listed", [this] { return torvane().driveList().rowCount() == 2; }, std::chrono::seconds(120));
    torvane().awaitLoaded();
}

/// Commands of "Extended Functions": what each does is tested with its dialog, that it is reached is tested here.
class ExtendedFunctionsMenuTest : public UiTest {
  protected:
    /// Expects the dialog with that caption in front of the main window, and closes it.
    void expectDialog(const std::string& caption) const {
        const Window dialog = program().awaitDialog();
        EXPECT_EQ(dialog.text(), caption);
        EXPECT_FALSE(torvane().window().enabled());
        dialog.post(WM_CLOSE);
        await("the dialog has closed", [&] { return !dialog.visible(); });
        expectNoBox(); // the main window is free again
    }

    /// Chooses the popup's item that is so many steps above its end. Before any dialog: the screen tells a moment later
    /// that the keyboard has left one, and that closes the menu.
    void chooseFromPopup(int stepsUp) const {
        const Window window = program().mainWindow();
        bringToFront(window);
        parkMouse(); // it would choose what opens under it
        pressKey(window, VK_F10);
        pressKey(window, VK_RIGHT);
        pressKey(window, VK_DOWN);
        for (int i = 0; i <= stepsUp; ++i) {
            pressKey(window, VK_UP);
        }
        pressKey(window, VK_RETURN);
    }
};

TEST_F(ExtendedFunctionsMenuTest, CompanyInformationOpensItsDialog) {
    chooseFromPopup(0);
    expectDialog("Configure Company Information");
    torvane().command(kMenuCompany);
    expectDialog("Configure Company Information");
}

TEST_F(ExtendedFunctionsMenuTest, CreateTechPortableUsbAsksForAFolder) {
    const int rows = torvane().logList().rowCount();
    chooseFromPopup(1);
    cancelFolder(program());
    expectStopBox("*** ERROR ***", "Please choose a destination folder.");
    torvane().command(kMenuPortable);
    cancelFolder(program());
    expectStopBox("*** ERROR ***", "Please choose a destination folder.");
    expectNoBox();
    EXPECT_EQ(torvane().logList().rowCount(), rows) << "something is copied";
}

TEST_F(ExtendedFunctionsMenuTest, DetectBitlockerOpensTheScanOfTheActiveDrive) {
    torvane().loadDrives();
    torvane().awaitProgressHidden();
    torvane().driveList().click(0);
    chooseFromPopup(2);
    expectDialog("Bitlocker Scan");
    torvane().command(kMenuBitLocker);
    expectDialog("Bitlocker Scan");
}

class ManualTest : public UiTest {
  protected:
    static constexpr WPARAM kManual = 96; // in the system menu
    static constexpr const char* kFile = "Torvane-manual.html";

    void awaitOpened(std::size_t times) const {
        await("powershell has opened the manual", [&] {
            return program().benchLog({"request=powershell", std::string("opened=\"") + kFile + "\""}).size() == times;
        });
        torvane().window().settle();
        expectNoBox();
    }
};

TEST_F(ManualTest, OpensByKeyAndSystemMenuAsOnePageThatNeedsNothingElse) {
    leaveProgramUsed();
    torvane().window().post(WM_SYSCOMMAND, kManual);
    awaitOpened(1);
    const std::string page = readFile(program().folder() / kFile);
    EXPECT_THAT(page, ::testing::StartsWith("<!DOCTYPE html>"));
    EXPECT_THAT(page, HasSubstr("<title>Torvane: the manual</title>"));
    EXPECT_THAT(page, HasSubstr("src=\"data:image/png;base64,iVBOR"));
    EXPECT_THAT(page, ::testing::Not(HasSubstr("src=\"pictures"))) << "nothing lies beside it";
    EXPECT_THAT(page, ::testing::Not(HasSubstr("://"))) << "nor is anything fetched";
    EXPECT_TRUE(page.ends_with("</html>\n"));

    // What somebody has changed is not what opens.
    std::ofstream(program().folder() / kFile) << "another manual";
    pressKey(torvane().window(), VK_F1);
    awaitOpened(2);
    EXPECT_EQ(readFile(program().folder() / kFile), page);
}

TEST_F(ManualTest, AFolderInWhichItCannotBeWrittenIsTold) {
    leaveProgramUsed();
    restart(pairBench().bench(R"({"refusedFiles": [{"path": "Torvane-manual.html"}]})"));
    torvane().window().post(WM_SYSCOMMAND, kManual);
    expectStopBox(
        "***** MANUAL NOT WRITTEN *****",
        "The manual could not be written as [Torvane-manual.html] into the folder in which Torvane works:\n\n" +
            program().folder().make_preferred().string() +
            "\n\nStart Torvane from a folder in which files can be made.");
    EXPECT_TRUE(program().benchLog({"request=powershell"}).empty());
}

} // namespace
} // namespace torvane::driver
