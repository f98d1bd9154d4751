#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/driver/shipped_resources.h"
#include "tests/ui/expect_soon.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

#include <commctrl.h>

#include <array>
#include <map>

namespace torvane::driver {
namespace {

using ::testing::ElementsAre;

struct ButtonText {
    int id;
    const char* text;
};

constexpr std::array<ButtonText, 17> kButtons{{
    {kLoadDrives, "Load Drives"},
    {kCreateReport, "Create Report"},
    {kEnableMounting, "Enable Drive Mounting"},
    {kDisableMounting, "Disable Drive Mounting"},
    {kClone, "Drive to Drive Clone"},
    {kDriveToImage, "Drive to Image"},
    {kImageToDrive, "Image to Drive"},
    {kForensicImage, "Create Forensic Image"},
    {kDataServices, "KVL Data Services"},
    {kWorkOrder, "KVL Data Work Order"},
    {kTerminate, "Terminate Current Task"},
    {kExit, "Exit Torvane"},
    {kShortTest, "Short Read Test"},
    {kCriticalTest, "Critical Read Test"},
    {kNistTest, "NIST Read Test"},
    {kQuickDiskView, "Quick Disk View"},
    {kLogToggle, "<"},
}};

/// The dials with their captions and the lamp, client pixels of the main window.
constexpr RECT kDials{10, 140, 1164, 244};

class StartTest : public UiTest {
  protected:
    [[nodiscard]] Window window() const { return program().mainWindow(); }
    /// Expects the about box in front of the window, and closes it.
    void expectAboutBox() const {
        const Window box = program().awaitDialog();
        EXPECT_EQ(box.text(), "About Torvane");
        EXPECT_FALSE(window().enabled());
        press(box.child(IDOK));
        await("the about box has closed", [&] { return !box.visible(); });
        EXPECT_TRUE(window().enabled());
    }
    [[nodiscard]] RECT place(int id) const { return window().child(id).rectIn(window()); }
};

TEST_F(StartTest, CaptionNamesTheVersion) {
    EXPECT_EQ(window().text(), "Torvane ver 1.2 June 20, 2022 7:40 AM");
}

TEST_F(StartTest, WindowHasItsSizeAndLiesOnTheScreen) {
    const RECT rect = window().rect();
    EXPECT_EQ(width(rect), 1190);
    EXPECT_EQ(height(rect), 440);
    EXPECT_GE(rect.left, 0);
    EXPECT_GE(rect.top, 0);
}

TEST_F(StartTest, BackgroundIsTheProgramsOwn) {
    parkMouse();
    const RECT area = window().clientRect();
    expectSoon([&] {
        const Picture edge = Picture::ofScreen({area.left, area.top + 140, area.left + 8, area.bottom});
        EXPECT_EQ(toText(edge.commonest()), toText(RGB(0xDA, 0xDF, 0xEA)));
    });
}

TEST_F(StartTest, EveryButtonShowsItsCommand) {
    for (const auto& [id, text] : kButtons) {
        const Window button = window().child(id);
        EXPECT_EQ(withoutAccessKey(button.text()), text);
        EXPECT_TRUE(button.visible()) << text;
        EXPECT_TRUE(button.enabled()) << text;
    }
}

TEST_F(StartTest, ThereAreNoOtherButtons) {
    int count = 0;
    for (const Window& child : window().children()) {
        count += child.className() == "Button" && child.visible() ? 1 : 0;
    }
    EXPECT_EQ(count, static_cast<int>(kButtons.size()));
}

TEST_F(StartTest, ButtonsAreOfOneSizeAndTheirTextsFit) {
    const RECT first = place(kLoadDrives);
    for (const auto& [id, text] : kButtons) {
        EXPECT_EQ(width(place(id)), width(first)) << text;
        EXPECT_EQ(height(place(id)), height(first)) << text;
        const SIZE needed = idealButtonSize(window().child(id));
        EXPECT_GT(needed.cx, 0) << text;
        EXPECT_LE(needed.cx, width(first)) << text;
        EXPECT_LE(needed.cy, height(first)) << text;
    }
}

TEST_F(StartTest, EverythingLiesInsideTheWindowAndNothingOverlaps) {
    RECT area{};
    GetClientRect(window().handle(), &area);
    // The lists are wider than the window's inside: their place is given.
    const auto isList = [](const Window& child) { return child.className() == "SysListView32"; };
    std::vector<Window> shown;
    for (const Window& child : window().children()) {
        if (child.visible()) {
            shown.push_back(child);
            EXPECT_TRUE(isList(child) || inside(child.rectIn(window()), area)) << child.describe();
        }
    }
    ASSERT_GE(shown.size(), kButtons.size());
    for (std::size_t i = 0; i < shown.size(); ++i) {
        EXPECT_FALSE(overlap(shown[i].rectIn(window()), kDials)) << "covers the dials: " << shown[i].describe();
        for (std::size_t j = i + 1; j < shown.size(); ++j) {
            EXPECT_FALSE(overlap(shown[i].rect(), shown[j].rect()))
                << shown[i].describe() << " and " << shown[j].describe();
        }
    }
}

TEST_F(StartTest, EveryCommandHasAnAccessKeyOfItsOwn) {
    std::map<char, std::string> keys;
    const auto add = [&](const std::string& text) {
        const char key = accessKey(text);
        ASSERT_NE(key, '\0') << text;
        EXPECT_TRUE(keys.emplace(key, text).second) << "'" << key << "' is " << keys[key] << " and " << text;
    };
    for (const auto& [id, text] : kButtons) {
        if (id != kLogToggle) {
            add(window().child(id).text());
        }
    }
    for (const MenuItem& item : shippedMainMenu()) {
        if (item.id != kMenuSpace) {
            add(item.text);
        }
    }
}

TEST_F(StartTest, TabGoesThroughTheCommandsGroupByGroup) {
    bringToFront(window());
    window().send(WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(window().child(kDriveList).handle()), TRUE);
    std::vector<int> visited;
    constexpr std::size_t kTooMany = 40;
    do {
        visited.push_back(focused(window()).id());
        pressKey(window(), VK_TAB);
    } while (focused(window()).id() != kDriveList && visited.size() < kTooMany);
    EXPECT_THAT(visited, ElementsAre(kDriveList, kLoadDrives, kQuickDiskView, kCreateReport, kShortTest, kCriticalTest,
                                     kNistTest, kClone, kDriveToImage, kForensicImage, kImageToDrive, kEnableMounting,
                                     kDisableMounting, kWorkOrder, kDataServices, kTerminate, kExit, kLogToggle));
}

TEST_F(StartTest, EnterStartsNothing) {
    bringToFront(window());
    window().send(WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(window().child(kDriveList).handle()), TRUE);
    const auto before = torvane().logList().rowCount();
    pressKey(window(), VK_RETURN);
    expectNoBox();
    EXPECT_EQ(torvane().logList().rowCount(), before);
    EXPECT_TRUE(window().visible());
}

TEST_F(StartTest, AccessKeyRunsItsCommand) {
    bringToFront(window());
    pressKey(window(), static_cast<WORD>(accessKey(window().child(kQuickDiskView).text())), VK_MENU);
    expectStopBox("***** NO ACTIVE DRIVE *****", "Please choose a drive to view");
}

TEST_F(StartTest, ProgressIsHidden) {
    EXPECT_FALSE(window().child(kScanProgress).visible());
    EXPECT_FALSE(window().child(kScanStatus).visible());
}

TEST_F(StartTest, StartListsAndLogsNothing) {
    EXPECT_EQ(torvane().driveList().rowCount(), 0);
    EXPECT_EQ(torvane().logList().rowCount(), 0);
}

TEST_F(StartTest, AboutBoxOpensFromTheSystemMenuAndByItsCommandAndCloses) {
    bringToFront(window());
    parkMouse();
    // "About" is the system menu's last item but one.
    pressKey(window(), VK_SPACE, VK_MENU);
    pressKey(window(), VK_UP);
    pressKey(window(), VK_UP);
    pressKey(window(), VK_RETURN);
    expectAboutBox();
    constexpr WPARAM kAbout = 16;
    window().post(WM_SYSCOMMAND, kAbout);
    expectAboutBox();
}

TEST(StartWithoutFilesTest, MissingMessagesEndTheProgramAtOnce) {
    const Launch launch = freshRun("StartWithoutFiles.Messages", pairBench());
    const std::filesystem::path tutorialFlag = launch.program.parent_path() / "TutorialData.db";
    ASSERT_TRUE(std::filesystem::remove(launch.program.parent_path() / "Message.db"));
    ASSERT_TRUE(std::filesystem::remove(tutorialFlag));
    Program program(launch);
    EXPECT_FALSE(program.mainWindow().exists());
    EXPECT_LT(program.awaitEnd(), 0xC0000000U) << program.obituary();
    EXPECT_FALSE(std::filesystem::exists(tutorialFlag)) << "the tutorial comes after the messages";
}

TEST(StartWithoutFilesTest, MissingPicturesAndCompanyAreNoReasonToEnd) {
    const Launch launch = freshRun("StartWithoutFiles.Pictures", pairBench());
    const std::filesystem::path folder = launch.program.parent_path();
    const std::filesystem::path company = folder / "Config.db";
    ASSERT_TRUE(std::filesystem::remove(company)) << "it is shipped";
    int removed = 0;
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
        if (file.path().extension() == ".png") {
            std::filesystem::remove(file.path());
            ++removed;
        }
    }
    ASSERT_GT(removed, 0);
    const Program program(launch);
    ASSERT_TRUE(program.mainWindow().exists()) << program.obituary();
    EXPECT_TRUE(program.running());
    EXPECT_FALSE(program.dialog());
    EXPECT_EQ(std::filesystem::file_size(company), 768U) << "the company's file is made";
    EXPECT_EQ(TorvaneWindow(program).logList().rowCount(), 0);
}

} // namespace
} // namespace torvane::driver
