#include "tests/ui/driver/input.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

namespace torvane::driver {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* kExitCaption = "***** Exiting Application *****";
constexpr const char* kSureText = "You are about to EXIT TVN. Are you sure?";
constexpr const char* kJobText = "Application still has a job working. Do you still want to EXIT?";
constexpr const char* kTerminateCaption = "***** STATUS TERMINATE JOB STATUS *****";
constexpr const char* kTerminateText = "You are about to TERMINATE the current job. Is that your intent?";
constexpr const char* kMountingCaption = "***** MOUNTING DISABLED -- *****";
constexpr const char* kMountingText =
    "Drive Mounting DISABLED. It is recommended that you ENABLE it before EXITing. Do "
    "you wish to ENABLE Drive Mounting";
constexpr const char* kStillCaption = "***** DRIVE MOUNTING STILL DISABLED *****";
constexpr const char* kStillText = "Drive Mounting STILL DISABLED. Reboot Computer to clear Drive Mounting Flags";

class TerminateTest : public UiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override { return heldBench(); }
    void SetUp() override {
        UiTest::SetUp();
        program().takeTime();
    }
    void letJobEnd() const {
        program().hurry();
        torvane().awaitLoaded();
    }
};

TEST_F(TerminateTest, IsSilentWithoutAJob) {
    torvane().press(kTerminate);
    expectNoBox();
}

TEST_F(TerminateTest, NoLeavesTheJobRunning) {
    torvane().startLoading();
    torvane().press(kTerminate);
    expectQuestion(kTerminateCaption, kTerminateText, "No");
    // The job still runs: the question comes again, and Load Drives is deaf.
    torvane().press(kTerminate);
    expectQuestion(kTerminateCaption, kTerminateText, "No");
    torvane().press(kLoadDrives);
    expectNoBox();
    letJobEnd();
}

TEST_F(TerminateTest, YesEndsTheJobAndTheCommandIsSilentAgain) {
    torvane().startLoading();
    torvane().press(kTerminate);
    expectQuestion(kTerminateCaption, kTerminateText, "Yes");
    torvane().press(kTerminate);
    expectNoBox();
    letJobEnd();
}

TEST_F(TerminateTest, MenuCommandAsksToo) {
    torvane().startLoading();
    torvane().command(kMenuTerminate);
    expectQuestion(kTerminateCaption, kTerminateText, "No");
    letJobEnd();
}

/// The program ends in these tests, unless it is told to stay.
class ExitTest : public UiTest {
  protected:
    void SetUp() override {
        UiTest::SetUp();
        expectEnd();
    }
    void expectEndOfProgram() {
        const DWORD code = program().awaitEnd();
        EXPECT_LT(code, 0xC0000000U) << program().obituary();
    }
    static std::string benchThatHoldsTheScan(const std::string& automount) {
        return R"({"tools": {"diskpart": {"delayMilliseconds": 600000, "delayOnly": "ReadOnlyTest.txt"}}, "automount": )" +
               automount + "}";
    }
    /// What diskpart was told, line by line.
    [[nodiscard]] std::vector<std::string> script() const {
        return program().benchLog({"request=diskpart", "script-line="});
    }
};

TEST_F(ExitTest, NoStays) {
    torvane().press(kExit);
    expectQuestion(kExitCaption, kSureText, "No");
    expectNoBox();
    EXPECT_TRUE(program().running());
    EXPECT_TRUE(program().mainWindow().visible());
    EXPECT_THAT(script(), IsEmpty()) << "the mounting status was asked for although nobody leaves";
}

TEST_F(ExitTest, YesEndsWithMountingEnabled) {
    torvane().press(kExit);
    expectQuestion(kExitCaption, kSureText, "Yes");
    expectEndOfProgram();
    EXPECT_THAT(script(), ElementsAre(HasSubstr("automount")));
}

TEST_F(ExitTest, YesEndsAfterAScan) {
    torvane().loadDrives();
    torvane().driveList().click(0);
    torvane().press(kExit);
    expectQuestion(kExitCaption, kSureText, "Yes");
    expectEndOfProgram();
}

TEST_F(ExitTest, WhileAJobRunsNoStays) {
    restart(heldBench());
    torvane().startLoading();
    torvane().press(kExit);
    expectQuestion(kExitCaption, kJobText, "No");
    // The job was not touched.
    torvane().press(kTerminate);
    expectQuestion(kTerminateCaption, kTerminateText, "No");
    program().hurry();
    torvane().awaitLoaded();
    EXPECT_EQ(torvane().driveList().rowCount(), 2);
}

// The scan is held until the end; the question for the mounting status is not.
TEST_F(ExitTest, WhileAJobRunsYesEnds) {
    restart(pairBench().bench(benchThatHoldsTheScan("true")));
    torvane().startLoading();
    torvane().press(kExit);
    expectQuestion(kExitCaption, kJobText, "Yes");
    expectEndOfProgram();
}

TEST_F(ExitTest, WhileAJobRunsYesStillOffersMounting) {
    restart(pairBench().bench(benchThatHoldsTheScan("false")));
    torvane().startLoading();
    torvane().press(kExit);
    expectQuestion(kExitCaption, kJobText, "Yes");
    expectQuestion(kMountingCaption, kMountingText, "No");
    expectEndOfProgram();
}

TEST_F(ExitTest, MountingStaysDisabledWhenTheOfferIsDeclined) {
    restart(pairBench().bench(R"({"automount": false})"));
    torvane().press(kExit);
    expectQuestion(kExitCaption, kSureText, "Yes");
    expectQuestion(kMountingCaption, kMountingText, "No");
    expectEndOfProgram();
    EXPECT_THAT(script(), Not(Contains(HasSubstr("automount enable"))));
}

TEST_F(ExitTest, MountingThatWasNotEnabledIsSaidToBeStillDisabled) {
    // This diskpart says "disabled" whatever it is told.
    restart(pairBench().bench(R"({"tools": {"diskpart": {"output":
        "\r\nMicrosoft DiskPart\r\n\r\nAutomatic mounting of new volumes disabled.\r\n\r\n"}}})"));
    torvane().press(kExit);
    expectQuestion(kExitCaption, kSureText, "Yes");
    expectQuestion(kMountingCaption, kMountingText, "Yes");
    expectStopBox(kStillCaption, kStillText);
    expectEndOfProgram();
}

TEST_F(ExitTest, FailedStatusEndsWithoutAQuestion) {
    restart(pairBench().bench(R"({"automount": false, "tools": {"diskpart": {"missing": true}}})"));
    torvane().press(kExit);
    expectQuestion(kExitCaption, kSureText, "Yes");
    expectEndOfProgram();
}

TEST_F(ExitTest, EveryWayOutAsks) {
    const Window window = program().mainWindow();
    bringToFront(window);
    pressKey(window, VK_F4, VK_MENU);
    expectQuestion(kExitCaption, kSureText, "No");
    pressKey(window, VK_ESCAPE);
    expectQuestion(kExitCaption, kSureText, "No");
    EXPECT_TRUE(window.visible());
    EXPECT_TRUE(program().running());
}

} // namespace
} // namespace torvane::driver
