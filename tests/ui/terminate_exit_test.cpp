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

/// A scan that goes on until it is let go.
class TerminateTest : public UiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override { return heldBench(); }
    void SetUp() override {
        UiTest::SetUp();
        program().takeTime();
    }
    void expectSilence() const {
        torvane().press(kTerminate);
        expectNoBox();
        torvane().command(kMenuTerminate);
        expectNoBox();
    }
};

TEST_F(TerminateTest, IsSilentWithoutAJob) {
    expectSilence();
}

TEST_F(TerminateTest, NoLeavesTheScanRunningAndYesEndsTheToolAtWorkAndTheScanWithWhatItHas) {
    torvane().startLoading();
    torvane().press(kTerminate);
    expectQuestion(kTerminateCaption, kTerminateText, "No");
    // The job still runs: the question comes again, and Load Drives is deaf.
    torvane().command(kMenuTerminate);
    expectQuestion(kTerminateCaption, kTerminateText, "No");
    torvane().press(kLoadDrives);
    expectNoBox();

    // The tool at work is ended, which the test never lets go; the bar stands there until the scan has ended.
    await("the status tells who is waited for",
          [&] { return torvane().control(kScanStatus).text().starts_with("still waiting for diskpart on drive 0, "); });
    EXPECT_TRUE(torvane().control(kScanProgress).visible());
    torvane().press(kTerminate);
    expectQuestion(kTerminateCaption, kTerminateText, "Yes");
    expectSilence();
    torvane().awaitLoaded();
    EXPECT_EQ(torvane().driveList().rowCount(), 2);
    EXPECT_THAT(torvane().logMessages("ERROR"),
                Contains("PARSE_BuildDataFile: [DISKPART Results.txt] TERMINATED before the tool was done"));
    torvane().awaitProgressHidden();
}

TEST_F(TerminateTest, WindowsMayNotEndTheSessionWhileAJobUsesDrives) {
    const Window window = program().mainWindow();
    EXPECT_NE(window.send(WM_QUERYENDSESSION), FALSE) << "nothing is at work";
    torvane().startLoading();
    EXPECT_EQ(window.send(WM_QUERYENDSESSION), FALSE);
    EXPECT_THAT(torvane().logMessages("STATUS"),
                Contains("Windows asked to end the session. Refused: The drives are being scanned."));
    expectNoBox();
    program().hurry();
    torvane().awaitLoaded();
    await("the scan is over", [&] { return window.send(WM_QUERYENDSESSION) != FALSE; });
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
    /// What diskpart was told, line by line.
    [[nodiscard]] std::vector<std::string> script() const {
        return program().benchLog({"request=diskpart", "script-line="});
    }
};

TEST_F(ExitTest, EveryWayOutAsksAndNoStays) {
    const Window window = program().mainWindow();
    const auto expectStays = [&] {
        expectQuestion(kExitCaption, kSureText, "No");
        expectNoBox();
        EXPECT_TRUE(program().running());
        EXPECT_TRUE(window.visible());
    };
    torvane().press(kExit);
    expectStays();
    torvane().command(kMenuExit);
    expectStays();
    bringToFront(window);
    pressKey(window, VK_F4, VK_MENU);
    expectStays();
    pressKey(window, VK_ESCAPE);
    expectStays();
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

// The scan is held until the end; the question for the mounting status is not.
TEST_F(ExitTest, WhileAJobRunsNoLeavesItAloneAndYesStillOffersMounting) {
    restart(pairBench().bench(
        R"({"tools": {"diskpart": {"delayMilliseconds": 600000, "delayOnly": "ReadOnlyTest.txt"}}, "automount": false})"));
    torvane().startLoading();
    torvane().press(kExit);
    expectQuestion(kExitCaption, kJobText, "No");
    // The job was not touched.
    torvane().press(kTerminate);
    expectQuestion(kTerminateCaption, kTerminateText, "No");

    torvane().press(kExit);
    expectQuestion(kExitCaption, kJobText, "Yes");
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

} // namespace
} // namespace torvane::driver
