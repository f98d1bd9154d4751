#include "tests/ui/copy_ui_test.h"
#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"

#include <gmock/gmock.h>

namespace torvane::driver {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr std::size_t kSourceSize = 70 * kMebibyte;

class CloneDialogTest : public CopyUiTest {};

TEST_F(CloneDialogTest, ShowsTheSourceAndEveryOtherDriveButTheSystems) {
    const CopyDialogWindow dialog = openClone("SOURCE");
    EXPECT_EQ(dialog.window().text(), "Drive to Drive Clone");
    const ListView source(dialog.window().child(kSourceList));
    ASSERT_EQ(source.rowCount(), 1);
    EXPECT_THAT(source.row(0), ElementsAre("SOURCE", "SRC-1", "0.07 GB"));
    const ListView destinations = dialog.destinations();
    ASSERT_EQ(destinations.rowCount(), 2);
    EXPECT_THAT(destinations.row(0), ElementsAre("TARGET", "TGT-2", "0.08 GB", "2", "K: L:"));
    EXPECT_THAT(destinations.row(1), ElementsAre("SMALL", "SML-3", "0.04 GB", "3", ""));
    EXPECT_FALSE(destinations.ticked(0)) << "a destination is chosen by the user alone";
    EXPECT_FALSE(destinations.ticked(1));
    EXPECT_EQ(dialog.window().child(kReverseClone).send(BM_GETCHECK), BST_UNCHECKED);
    expectMountingHint(dialog);
    dialog.leave();
}

TEST_F(CloneDialogTest, TabGoesThroughItFromTheDestinations) {
    const CopyDialogWindow dialog = openClone("SOURCE");
    bringToFront(dialog.window());
    await("the destinations have the focus", [&] { return focused(dialog.window()).id() == kDestinationList; });
    std::vector<int> visited;
    constexpr std::size_t kTooMany = 12;
    do {
        visited.push_back(focused(dialog.window()).id());
        pressKey(dialog.window(), VK_TAB);
    } while (focused(dialog.window()).id() != kDestinationList && visited.size() < kTooMany);
    EXPECT_THAT(visited, ElementsAre(kDestinationList, kReverseClone, kCloneIds.start, kCloneIds.terminate,
                                     kVerifyAfterwards, kCloneIds.exit, kSourceList));
    dialog.leave();
}

TEST_F(CloneDialogTest, WantsExactlyOneDestination) {
    const CopyDialogWindow dialog = openClone("SOURCE");
    expectWantsExactlyOneDestination(dialog);
    dialog.leave();
}

TEST_F(CloneDialogTest, ADeclinedWarningStartsNothing) {
    useUntouchedBench();
    const CopyDialogWindow dialog = openClone("SOURCE");
    dialog.tickDestination("SMALL");
    // "Start" asks a second time only when nothing runs.
    for (int i = 0; i < 2; ++i) {
        dialog.start();
        answerWarning("No");
        expectBoxOver(dialog, "***** Function Cancelled *****", "Clone could not be started", BoxIcon::kStop, "OK");
    }
    EXPECT_EQ(dialog.status(), "");
    EXPECT_THAT(program().benchLog({"request=write"}), IsEmpty());
    EXPECT_THAT(program().benchLog({"script-line=\"clean\""}), IsEmpty());
    EXPECT_EQ(driveStatus("SMALL"), "Idle");
    dialog.leave();
}

TEST_F(CloneDialogTest, ADestinationThatIsNoLongerTheLoadedDriveIsLeftAlone) {
    useUntouchedBench();
    leaveProgramUsed(); // a drive of its bench is unplugged
    const CopyDialogWindow dialog = openClone("SOURCE");
    dialog.tickDestination("TARGET");
    dialog.start();
    (void)awaitWarning(program());
    program().unplug(2);
    answerWarning("Yes");
    expectBoxOver(dialog, "***** DRIVE HAS CHANGED *****",
                  "The DESTINATION is not the drive that was loaded any more, or it does not answer. Nothing was "
                  "written. Load the drives again",
                  BoxIcon::kStop, "OK");
    EXPECT_TRUE(dialog.window().enabled()) << "a second box has opened";
    EXPECT_THAT(program().benchLog({"request=diskpart", "clean"}), IsEmpty());
    EXPECT_EQ(driveStatus("TARGET"), "Idle");
    dialog.leave();
}

TEST_F(CloneDialogTest, ArrivesWholeOnADiskWithMountedVolumes) {
    useUntouchedBench();
    const CopyDialogWindow dialog = openClone("SOURCE");
    startOnto(dialog, "TARGET");
    dialog.awaitStatus(" Image Completed");
    EXPECT_EQ(content(2, 0, kSourceSize), noise(7, 0, kSourceSize));
    EXPECT_EQ(content(2, kSourceSize, 10 * kMebibyte), std::string(10 * kMebibyte, '\0'));
    awaitDriveStatus("SOURCE", "COMPLETED");
    awaitDriveStatus("TARGET", "COMPLETED");
    EXPECT_EQ(driveStatus("SMALL"), "Idle");
    dialog.leave();
}

TEST_F(CloneDialogTest, FindsAWriteThatWentWrongUnseenWhenItVerifiesAfterwards) {
    useBench(copyBench().drive("3-small", R"({"number": 3, "bus": "nvme", "size": "40 MiB",
        "identity": {"product": "SMALL", "serial": "SML-3"}, "faults": {"corruptWrites": [{"firstSector": 70000}]}})"));
    const CopyDialogWindow dialog = openClone("SOURCE");
    const Window verify = dialog.window().child(kVerifyAfterwards);
    EXPECT_EQ(verify.text(), "&Verify afterwards");
    EXPECT_EQ(verify.send(BM_GETCHECK), BST_UNCHECKED);
    press(verify);
    startOnto(dialog, "SMALL");
    expectBoxOver(dialog, "****** VERIFY FAILED ******",
                  "The DESTINATION has NOT been verified: 1 block differs, the first at sector 70000. A sector has 512 "
                  "bytes",
                  BoxIcon::kNone, "OK");
    EXPECT_EQ(dialog.status(), " Copy NOT verified");
    EXPECT_EQ(driveStatus("SMALL"), "BAD not verified");
    EXPECT_EQ(dialog.losses().text(), "30 MB of the source not copied");
    dialog.leave();
}

TEST_F(CloneDialogTest, TellsBesideItsEndWhatItHasLost) {
    const auto redPixels = [](const CopyDialogWindow& dialog) {
        return Picture::atRest(dialog.losses().rect()).count(RGB(176, 0, 0));
    };
    useBench(copyBenchWithFaults(R"({"reads": [{"firstSector": 5}]})"));
    {
        const CopyDialogWindow dialog = openClone("SOURCE");
        EXPECT_EQ(dialog.losses().text(), "");
        startOnto(dialog, "SMALL");
        dialog.awaitStatus(" Image Completed");
        EXPECT_EQ(dialog.losses().text(), "1 unreadable block, 30 MB of the source not copied");
        EXPECT_GT(redPixels(dialog), 20);
        awaitDriveStatus("SMALL", "BAD 1 unreadable block, 30 MB of the source not copied");
        dialog.leave();
    }
    const CopyDialogWindow dialog = openClone("TARGET");
    EXPECT_EQ(dialog.losses().text(), "");
    dialog.leave();
}

/// Clones that stand in the middle, because the source's second block is held up.
class HeldCloneTest : public CopyUiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override { return copyBenchHeldAt(kInSecondBlock); }
    void SetUp() override {
        UiTest::SetUp();
        program().takeTime();
    }
    /// A clone of which the first block has been copied.
    void awaitFirstBlock(const CopyDialogWindow& dialog) const {
        startOnto(dialog, "TARGET");
        dialog.awaitStatusStart(" Status: 00:00:");
    }
    [[nodiscard]] CopyDialogWindow startClone() const {
        const CopyDialogWindow dialog = openClone("SOURCE");
        awaitFirstBlock(dialog);
        return dialog;
    }
    void expectExitRefused(const CopyDialogWindow& dialog) const {
        expectBoxOver(dialog, "***** ERROR TERMINATE BEFORE EXIT *****", "Terminate Clone before Exiting",
                      BoxIcon::kNone, "OK");
        EXPECT_TRUE(dialog.window().visible());
    }
    [[nodiscard]] std::size_t cleans() const { return program().benchLog({"script-line=\"clean\""}).size(); }
};

TEST_F(HeldCloneTest, AReadUnderWayLeavesTheWindowAliveAndTerminateActsAfterIt) {
    useUntouchedBench();
    const CopyDialogWindow dialog = startClone();
    const std::string statusBefore = dialog.status();
    dialog.terminate();
    // A window that waits for the read would not answer.
    dialog.window().awaitPainted();
    EXPECT_EQ(dialog.status(), statusBefore) << "the read is still under way";
    program().hurry();
    dialog.awaitStatus(" User Terminated Image");
    awaitDriveStatus("TARGET", "BAD not completed");
    EXPECT_EQ(program().benchLog({"target=drive:2", "request=write"}).size(), 2U) << "the block in flight is written";
    EXPECT_TRUE(content(2, 0, 64 * kMebibyte) == noise(7, 0, 64 * kMebibyte));
    dialog.leave();
}

TEST_F(HeldCloneTest, WhileItRunsStartIsDeafAndTheDialogStaysInFrontOfTheMainWindow) {
    const std::size_t cleansBefore = cleans();
    const CopyDialogWindow dialog = startClone();
    EXPECT_FALSE(torvane().window().enabled());
    EXPECT_THAT(driveStatus("TARGET"), StartsWith("Cloning "));
    EXPECT_THAT(driveStatus("SOURCE"), StartsWith("Cloning "));
    dialog.exit();
    expectExitRefused(dialog);
    dialog.window().post(WM_CLOSE);
    expectExitRefused(dialog);
    dialog.start();
    EXPECT_TRUE(dialog.window().enabled()) << "something opened";
    program().hurry();
    dialog.awaitStatus(" Image Completed");
    EXPECT_EQ(cleans(), cleansBefore + 1);
    dialog.leave();
    EXPECT_TRUE(torvane().window().enabled());
}

TEST_F(HeldCloneTest, TerminateOfAReverseCloneSpeaksOfAClone) {
    const CopyDialogWindow dialog = openClone("SOURCE");
    press(dialog.window().child(kReverseClone));
    awaitFirstBlock(dialog);
    dialog.terminate();
    program().hurry();
    dialog.awaitStatus(" User Terminated Clone");
    dialog.leave();
}

TEST_F(HeldCloneTest, CanBeLeftWhileTheLastReadIsUnderWayAndNothingElseStartsMeanwhile) {
    const CopyDialogWindow dialog = startClone();
    constexpr const char* kWorking = "***** Working *****";
    constexpr const char* kStillCloning = "Still at work: a clone.\n\nNothing was started. What was told to stop ends "
                                          "with the read, write or tool that it "
                                          "has under way. Please try again then.";
    dialog.terminate();
    press(dialog.window().child(kCloneIds.start));
    expectBoxOver(dialog, kWorking, kStillCloning, BoxIcon::kStop, "OK");
    dialog.leave();

    torvane().press(kClone);
    expectStopBox(kWorking, kStillCloning);
    EXPECT_EQ(torvane().log().back().message, "The last job on a drive has not ended yet");
    torvane().press(kLoadDrives);
    expectStopBox(kWorking, kStillCloning);
    EXPECT_EQ(torvane().driveList().rowCount(), 4) << "the records of the drives are still in use";

    program().hurry();
    awaitDriveStatus("TARGET", "BAD not completed");
    const CopyDialogWindow again = openClone("SOURCE");
    EXPECT_EQ(again.status(), "");
    again.leave();
}

} // namespace
} // namespace torvane::driver
