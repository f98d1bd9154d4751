#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/expect_soon.h"
#include "tests/ui/ui_test.h"

#include <fstream>

namespace torvane::driver {
namespace {

constexpr int kPrevent = 1019;
constexpr int kContinue = 1021;
constexpr int kPictureWidth = 640;
constexpr int kPictureHeight = 420;

const std::string kShown("\1\0\0\0", 4);
const std::string kHidden("\0\0\0\0", 4);

/// Each test starts the program itself: the tutorial is part of the start.
class TutorialTest : public ::testing::Test {
  protected:
    void SetUp() override {
        launch_ =
            freshRun(std::string("TutorialTest.") + ::testing::UnitTest::GetInstance()->current_test_info()->name(),
                     smallBench());
        std::filesystem::remove(flagFile());
    }

    [[nodiscard]] std::filesystem::path flagFile() const { return launch_.program.parent_path() / "TutorialData.db"; }
    [[nodiscard]] std::string flag() const { return readFile(flagFile()); }
    void setFlag(const std::string& bytes) const { std::ofstream(flagFile(), std::ios::binary) << bytes; }

    static void awaitClosed(const Program& program, const Window& tutorial) {
        await("the tutorial has closed", [&] { return !tutorial.exists(); });
        await("the main window takes input", [&] { return program.mainWindow().enabled(); });
    }

    static void expectRightOfTheScreensMiddle(const Window& tutorial) {
        const RECT rect = tutorial.rect();
        EXPECT_EQ(rect.left, (GetSystemMetrics(SM_CXSCREEN) - width(rect)) / 2 + 40);
        EXPECT_EQ(rect.top, (GetSystemMetrics(SM_CYSCREEN) - height(rect)) / 2);
    }
    static void expectFilledByItsPictureAboveTheControls(const Window& tutorial) {
        parkMouse();
        tutorial.awaitPainted();
        const RECT area = tutorial.clientRect();
        EXPECT_EQ(width(area), kPictureWidth);
        expectSoon([&] {
            const Picture headline = Picture::ofScreen({area.left, area.top, area.right, area.top + 48});
            EXPECT_LT(headline.count(RGB(218, 223, 234)), 100) << "the picture's dark headline is missing";
        });
        for (const int control : {kPrevent, kContinue}) {
            const RECT place = tutorial.child(control).rect();
            EXPECT_TRUE(inside(place, area)) << control;
            EXPECT_GE(place.top, area.top + kPictureHeight) << control << " covers the picture";
        }
    }

    Launch launch_;
};

TEST_F(TutorialTest, ShowsAtTheFirstStartAndLeavesItsFlag) {
    const Program program(launch_);
    const Window tutorial = program.awaitDialog();
    EXPECT_EQ(flag(), kShown);
    EXPECT_EQ(tutorial.child(kPrevent).text(), "&Prevent this tutorial from reappearing");
    EXPECT_EQ(tutorial.child(kContinue).text(), "&Continue");
    EXPECT_TRUE(program.mainWindow().visible()) << "what the tutorial explains";
    EXPECT_FALSE(program.mainWindow().enabled());
    expectRightOfTheScreensMiddle(tutorial);
    expectFilledByItsPictureAboveTheControls(tutorial);
    press(tutorial.child(kContinue));
    awaitClosed(program, tutorial);
    EXPECT_EQ(flag(), kShown);
}

TEST_F(TutorialTest, ShowsAgainWhenItWasOnlyClosedAndTickedAwayItNeverComesBack) {
    setFlag(kShown);
    {
        const Program program(launch_);
        const Window tutorial = program.awaitDialog();
        bringToFront(tutorial);
        pressKey(tutorial, VK_ESCAPE);
        awaitClosed(program, tutorial);
        EXPECT_EQ(flag(), kShown) << "Escape decides nothing";
    }
    {
        const Program program(launch_);
        const Window tutorial = program.awaitDialog();
        EXPECT_TRUE(tutorial.hasChild(kContinue)) << "it shows again";
        press(tutorial.child(kPrevent));
        press(tutorial.child(kContinue));
        awaitClosed(program, tutorial);
        EXPECT_EQ(flag(), kHidden);
    }
    const Program again(launch_);
    ASSERT_TRUE(again.mainWindow().exists()) << again.obituary();
    again.mainWindow().settle();
    EXPECT_FALSE(again.dialog()) << again.dialog()->describe();
    EXPECT_TRUE(again.mainWindow().enabled()) << "the tutorial is about to open";
    EXPECT_EQ(flag(), kHidden);
}

TEST_F(TutorialTest, KeepsATickThatItWasClosedWithAndIsInTheSystemMenu) {
    constexpr WPARAM kShowTutorial = 80;
    setFlag(kShown);
    const Program program(launch_);
    const Window tutorial = program.awaitDialog();
    press(tutorial.child(kPrevent));
    bringToFront(tutorial);
    pressKey(tutorial, VK_ESCAPE);
    awaitClosed(program, tutorial);
    EXPECT_EQ(flag(), kHidden);

    program.mainWindow().post(WM_SYSCOMMAND, kShowTutorial);
    const Window again = program.awaitDialog();
    EXPECT_EQ(again.child(kPrevent).send(BM_GETCHECK), BST_CHECKED);
    press(again.child(kPrevent));
    press(again.child(kContinue));
    awaitClosed(program, again);
    EXPECT_EQ(flag(), kShown);
}

TEST_F(TutorialTest, EnterContinuesAndAFileThatCannotBeWrittenIsNoReasonForABox) {
    std::filesystem::create_directory(flagFile());
    const Program program(launch_);
    const Window tutorial = program.awaitDialog();
    bringToFront(tutorial);
    expectSoon([&] { EXPECT_EQ(focused(tutorial).id(), kContinue); });
    press(tutorial.child(kPrevent));
    pressKey(tutorial, VK_RETURN);
    awaitClosed(program, tutorial);
    EXPECT_FALSE(program.dialog());
}

} // namespace
} // namespace torvane::driver
