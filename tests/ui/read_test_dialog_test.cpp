#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/expect_soon.h"
#include "tests/ui/ui_test.h"

#include <commctrl.h>

#include <gmock/gmock.h>

#include <array>
#include <chrono>

namespace torvane::driver {
namespace {

using ::testing::HasSubstr;

constexpr int kProgress = 1041;
constexpr int kExitTest = 1042;
constexpr int kStart = 1043;
constexpr int kTerminateTest = 1044;
constexpr int kTitleLabel = 7400;
constexpr int kStatusLabel = 7401;
constexpr int kWideProgress = 1063;
constexpr int kStatusColumn = 5;
constexpr std::chrono::seconds kTestPatience{120}; // of a whole read test

constexpr const char* kRunningCaption = "****** TEST CURRENTLY RUNNING ******";
constexpr const char* kTerminateText = "Your test is still running. Do you wish to terminate the test?";
constexpr const char* kTerminateAndExitText = "Your test is still running. Do you wish to terminate the test and exit?";
constexpr const char* kExitCaption = "****** EXIT READ TEST ******";
constexpr const char* kExitText = "You are about to exit Read Test, is that your intent?";

/// A bench with one drive under test besides the system's; `more`: further fields of it, beginning with a comma.
BenchFolder testBench(const std::string& size, const std::string& more = "") {
    BenchFolder folder = pairBench();
    folder.drive("1-nvme", R"({"number": 1, "bus": "nvme", "size": ")" + size + R"(", "road": "nvme-query",
        "backing": {"pattern": "zero"},
        "identity": {"product": "Tarn N256", "revision": "2B3Q", "serial": "TN256-0042"})" +
                               more + "}");
    return folder;
}

std::string faults(const std::string& json) {
    return R"(, "faults": )" + json;
}

class ReadTestDialogTest : public UiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override { return testBench("10 GiB"); }

    /// Makes the drive under test active.
    void chooseDrive() {
        torvane().loadDrivesOnce();
        torvane().driveList().click(1);
        forgetReads();
    }
    /// The same, and no test has run on it yet.
    void chooseUntestedDrive() {
        torvane().loadDrives();
        chooseDrive();
    }

    [[nodiscard]] Window open(int button) const {
        torvane().press(button);
        return program().awaitDialog();
    }
    /// Opens the dialog and starts its test.
    [[nodiscard]] Window start(int button) const {
        Window dialog = open(button);
        press(dialog.child(kStart));
        return dialog;
    }
    void expectQuestionOver(const Window& dialog, const std::string& caption, const std::string& text,
                            const std::string& answer) const {
        expectBoxOver(dialog, caption, text, BoxIcon::kNone, answer);
    }
    /// Leaves a dialog whose test has ended, or was never one that counts as a job.
    void leave(const Window& dialog) const {
        press(dialog.child(kExitTest));
        expectQuestionOver(dialog, kExitCaption, kExitText, "Yes");
        awaitClosed(dialog);
    }
    static void awaitClosed(const Window& dialog) {
        await("the dialog has closed", [&] { return !dialog.exists(); });
    }
    static void awaitStatus(const Window& dialog, const std::string& text) {
        await(
            "the status is '" + text + "'", [&] { return dialog.child(kStatusLabel).text() == text; }, kTestPatience);
    }
    [[nodiscard]] std::string driveStatus() const { return torvane().driveList().cell(1, kStatusColumn); }
    void awaitDriveStatus(const std::string& text) const {
        await(
            "the drive's status is '" + text + "', not '" + driveStatus() + "'", [&] { return driveStatus() == text; },
            kTestPatience);
    }
    /// Reads of the drive since the program was started, or since `forgetReads`.
    [[nodiscard]] std::size_t readCount() const {
        return program().benchLog({"target=drive:1", "request=read"}).size() - forgottenReads_;
    }
    void forgetReads() { forgottenReads_ += readCount(); }
    void awaitReads(std::size_t count) const {
        await(
            "the drive was read", [&] { return readCount() >= count; }, kTestPatience);
    }

  private:
    std::size_t forgottenReads_ = 0;
};

TEST_F(ReadTestDialogTest, HasItsTextsByButtonAndByMenuCommand) {
    chooseDrive();
    struct Kind {
        int button;
        int command;
        const char* caption;
    };
    constexpr std::array<Kind, 3> kKinds{{{kShortTest, kMenuShortTest, "SHORT Read Test"},
                                          {kCriticalTest, kMenuCriticalTest, "CRITICAL Read Test"},
                                          {kNistTest, kMenuNistTest, "NIST Read Test"}}};
    for (const Kind& kind : kKinds) {
        const Window dialog = open(kind.button);
        EXPECT_EQ(dialog.text(), kind.caption);
        EXPECT_EQ(dialog.child(kTitleLabel).text(), "Testing: Tarn N256");
        EXPECT_EQ(dialog.child(kStatusLabel).text(), "Status: Idle...");
        for (int spare = 7402; spare <= 7404; ++spare) {
            EXPECT_EQ(dialog.child(spare).text(), "No Text");
            EXPECT_FALSE(dialog.child(spare).visible());
        }
        EXPECT_EQ(withoutAccessKey(dialog.child(kStart).text()), "Start Testing");
        EXPECT_EQ(withoutAccessKey(dialog.child(kTerminateTest).text()), "Terminate Testing");
        EXPECT_EQ(withoutAccessKey(dialog.child(kExitTest).text()), "Exit");
        leave(dialog);

        torvane().command(kind.command);
        const Window again = program().awaitDialog();
        EXPECT_EQ(again.text(), kind.caption);
        leave(again);
    }
    expectNoBox();
}

TEST_F(ReadTestDialogTest, IsLaidOutByPixels) {
    chooseDrive();
    const Window dialog = open(kShortTest);
    const RECT area = dialog.clientRect();
    const LONG clientWidth = width(area);
    const LONG clientHeight = height(area);
    const auto expectPlace = [&](int id, LONG left, LONG top, LONG boxWidth, LONG boxHeight) {
        EXPECT_EQ(toText(dialog.child(id).rectIn(dialog)), toText({left, top, left + boxWidth, top + boxHeight})) << id;
    };
    expectPlace(kTitleLabel, 10, 10, clientWidth / 2 - 15, 20);
    expectPlace(kStatusLabel, clientWidth / 2 + 5, 10, clientWidth / 2 - 15, 20);
    expectPlace(kProgress, 10, 40, clientWidth - 20, 14);
    const LONG button = (clientWidth - 40) / 3;
    expectPlace(kStart, 10, clientHeight - 60, button, 50);
    expectPlace(kTerminateTest, button + 20, clientHeight - 60, button, 50);
    expectPlace(kExitTest, clientWidth - 10 - button, clientHeight - 60, button, 50);
    for (const int label : {kTitleLabel, kStatusLabel}) {
        EXPECT_NE(dialog.child(label).style() & SS_SUNKEN, 0);
    }
    parkMouse();
    dialog.awaitPainted();
    expectSoon([&] { EXPECT_EQ(toText(Picture::ofScreen(area).commonest()), toText(RGB(218, 223, 234))); });
    leave(dialog);
}

TEST_F(ReadTestDialogTest, EveryWayOutAsks) {
    chooseDrive();
    const Window dialog = open(kCriticalTest);
    pressKey(dialog, VK_ESCAPE);
    expectQuestionOver(dialog, kExitCaption, kExitText, "No");
    dialog.post(WM_CLOSE);
    expectQuestionOver(dialog, kExitCaption, kExitText, "No");
    EXPECT_TRUE(dialog.visible());
    leave(dialog);
}

TEST_F(ReadTestDialogTest, EachKindPassesUntilTheDrivesAreLoadedAgain) {
    struct Kind {
        int button;
        const char* status;
        const char* driveStatus;
        std::size_t reads;
        int range; ///< of the dialog's progress bar
    };
    constexpr std::array<Kind, 3> kKinds{
        {{kShortTest, "Short Read Test -- PASSED", "COMPLETED Short Read Test PASSED", 100, 100},
         {kCriticalTest, "PASSED Critical Read Test", "COMPLETED Critical Read Test PASSED", 192, 32},
         {kNistTest, "NIST Read Test -- PASSED", "COMPLETED NIST Read Test PASSED", 2000, 1000}}};
    chooseUntestedDrive();
    for (const Kind& kind : kKinds) {
        SCOPED_TRACE(kind.driveStatus);
        forgetReads();
        const Window dialog = open(kind.button);
        press(dialog.child(kStart));
        awaitStatus(dialog, kind.status);
        awaitDriveStatus(kind.driveStatus);
        EXPECT_EQ(readCount(), kind.reads);
        EXPECT_EQ(dialog.child(kProgress).send(PBM_GETRANGE, FALSE), kind.range);
        await("the bar is back", [&] { return dialog.child(kProgress).send(PBM_GETPOS) == 0; });
        if (kind.button == kShortTest) {
            EXPECT_EQ(torvane().control(kWideProgress).send(PBM_GETPOS), 99) << "its progress goes to the main window";
        }
        leave(dialog);
    }
    torvane().loadDrives();
    EXPECT_EQ(driveStatus(), "Idle");
}

class BadSectorTest : public ReadTestDialogTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        return testBench("10 GiB", faults(R"({"reads": [{"firstSector": 70000}, {"firstSector": 838900}]})"));
    }
};

TEST_F(BadSectorTest, FailuresSayWhereTheTechnicianLooks) {
    chooseUntestedDrive();
    const Window critical = start(kCriticalTest);
    awaitStatus(critical, "Phase 1 Critical Read Test FAILED");
    awaitDriveStatus("BAD Critical Read Test FAILED at sector 65536");
    EXPECT_THAT(torvane().log(), ::testing::Not(::testing::Contains(::testing::Field(&LogEntry::type, "ERROR"))));
    leave(critical);

    const Window quick = start(kShortTest);
    awaitStatus(quick, "Short Read Test -- FAILED Found Read Errors");
    awaitDriveStatus("BAD Short Read Test FAILED at sector 838860");
    EXPECT_EQ(torvane().log().back().type, "ERROR");
    EXPECT_EQ(torvane().log().back().message, "BAD READ BLOCK AT SECTOR: [838860] for <65536> bytes");
    leave(quick);
}

/// Every read takes its time until the bench is told to hurry.
class SlowReadTest : public ReadTestDialogTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        return testBench("10 GiB",
                         faults(R"({"slow": [{"firstSector": 0, "sectors": 20971520, "milliseconds": 200}]})"));
    }
    void SetUp() override {
        ReadTestDialogTest::SetUp();
        program().takeTime();
    }
};

/// A Short test reads three of its hundred places, and goes on when the bench is told to hurry.
class HeldShortTest : public SlowReadTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        return testBench("10 GiB",
                         faults(R"({"slow": [{"firstSector": 629145, "sectors": 20342375, "milliseconds": 600000}]})"));
    }
};

TEST_F(SlowReadTest, TerminatesAfterAQuestion) {
    chooseUntestedDrive();
    const Window dialog = start(kNistTest);
    awaitReads(3);
    expectSoon([&] {
        EXPECT_THAT(dialog.child(kStatusLabel).text(), HasSubstr("Testing ["));
        EXPECT_THAT(driveStatus(), HasSubstr("NIST Read Test "));
    });
    press(dialog.child(kTerminateTest));
    expectQuestionOver(dialog, kRunningCaption, kTerminateText, "No");
    awaitReads(readCount() + 4);
    press(dialog.child(kTerminateTest));
    expectQuestionOver(dialog, kRunningCaption, kTerminateText, "Yes");
    awaitStatus(dialog, "NIST Random Read Test User Terminated");
    awaitDriveStatus("BAD NIST Read Test TERMINATED");
    // No test runs any more: nothing to ask.
    press(dialog.child(kTerminateTest));
    dialog.settle();
    EXPECT_TRUE(dialog.enabled());
    leave(dialog);
}

TEST_F(SlowReadTest, ExitDuringATestStopsItWithoutWaiting) {
    chooseUntestedDrive();
    const Window dialog = start(kNistTest);
    awaitReads(3);
    press(dialog.child(kExitTest));
    expectQuestionOver(dialog, kRunningCaption, kTerminateAndExitText, "No");
    EXPECT_TRUE(dialog.visible());
    awaitReads(readCount() + 4);
    press(dialog.child(kExitTest));
    expectQuestionOver(dialog, kRunningCaption, kTerminateAndExitText, "Yes");
    awaitClosed(dialog);
    awaitDriveStatus("BAD NIST Read Test TERMINATED");
    torvane().loadDrives();
    EXPECT_EQ(driveStatus(), "Idle");
}

TEST_F(HeldShortTest, HearsNoTerminationAndGoesOnBehindTheClosedDialog) {
    chooseUntestedDrive();
    const Window dialog = start(kShortTest);
    awaitReads(3);
    press(dialog.child(kTerminateTest));
    dialog.settle();
    EXPECT_TRUE(dialog.enabled()) << "a question was asked";
    leave(dialog);
    torvane().press(kLoadDrives);
    expectStopBox("***** Load Drives *****", "Short Test is Running");
    // It shows nothing in the next dialog, and its progress in the main window.
    const Window next = open(kNistTest);
    program().hurry();
    await("half of the probes are read", [&] { return torvane().control(kWideProgress).send(PBM_GETPOS) >= 50; });
    EXPECT_EQ(next.child(kStatusLabel).text(), "Status: Idle...");
    awaitDriveStatus("COMPLETED Short Read Test PASSED");
    EXPECT_EQ(next.child(kStatusLabel).text(), "Status: Idle...");
    EXPECT_EQ(readCount(), 100U);
    leave(next);
}

/// Every read takes a little; one block of a Critical test takes long, and the next is bad. Both places are ones that a
/// NIST test of this drive does not visit.
class OverlappingReadTests : public ReadTestDialogTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        return testBench("10 GiB", faults(R"({"reads": [{"firstSector": 139000}],
            "slow": [{"firstSector": 78000, "milliseconds": 5000},
                     {"firstSector": 0, "sectors": 20971520, "milliseconds": 30}]})"));
    }
};

TEST_F(OverlappingReadTests, ARunThatOutlivesItsDialogLeavesTheNextTestAlone) {
    chooseDrive();
    const Window critical = start(kCriticalTest);
    awaitReads(1);
    press(critical.child(kStart));
    // The first run fails and clears the flag that both share; the second is then within its long read.
    awaitStatus(critical, "Phase 1 Critical Read Test FAILED");
    leave(critical);
    const Window nist = start(kNistTest);
    awaitReads(readCount() + 25); // the long read is over
    EXPECT_THAT(nist.child(kStatusLabel).text(), HasSubstr("Testing ["));
    EXPECT_EQ(program().benchLog({"target=drive:1", "request=read", "result=ERROR_CRC"}).size(), 1U)
        << "the second run went on";
    press(nist.child(kExitTest));
    expectQuestionOver(nist, kRunningCaption, kTerminateAndExitText, "Yes");
    awaitClosed(nist);
    awaitDriveStatus("BAD NIST Read Test TERMINATED");
}

/// The drive answers twelve times and then no more; the system gives up when the bench is told to hurry.
class SilentDriveTest : public ReadTestDialogTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        return testBench("10 GiB", faults(R"({"stopsAnswering": {"afterRequests": 12, "milliseconds": 600000}})"));
    }
    void SetUp() override {
        leaveProgramUsed();
        ReadTestDialogTest::SetUp();
    }
};

TEST_F(SilentDriveTest, DialogAndThenTheProgramMayGoWhileAReadIsInFlight) {
    chooseDrive();
    const Window dialog = start(kNistTest);
    awaitReads(12);
    press(dialog.child(kExitTest));
    expectQuestionOver(dialog, kRunningCaption, kTerminateAndExitText, "Yes");
    awaitClosed(dialog);
    EXPECT_EQ(readCount(), 12U) << "the read came to an end; nothing was shown here";
    // The records are in use until the read comes back.
    torvane().press(kLoadDrives);
    expectStopBox("***** Working *****",
                  "Still at work: a NIST Read Test.\n\nNothing was started. What was told to stop "
                  "ends with the read, write or tool that it has under way. Please try again "
                  "then.");
    EXPECT_EQ(torvane().driveList().rowCount(), 2);
    torvane().press(kExit);
    expectQuestion("***** Exiting Application *****", "You are about to EXIT TVN. Are you sure?", "Yes");
    EXPECT_LT(program().awaitEnd(), 0xC0000000U) << program().obituary();
}

} // namespace
} // namespace torvane::driver
