#include "window/command_guards.h"

#include "state/app_state.h"
#include "state/still_at_work.h"
#include "tests/support/recording_main_view.h"
#include "tests/support/scripted_prompts.h"

#include <gtest/gtest.h>

namespace torvane::testing {
namespace {

class CommandGuardsTest : public ::testing::Test {
  protected:
    // NOLINTBEGIN(misc-non-private-member-variables-in-classes)
    AppState state_;
    RecordingMainView view_;
    ViewInstalled forTheLog_{appState(), view_};
    ViewInstalled forTheGuards_{state_, view_};
    ScriptedPrompts user_;
    DriveRecord first_;
    DriveRecord second_;
    // NOLINTEND(misc-non-private-member-variables-in-classes)
};

TEST_F(CommandGuardsTest, ADriveOfUnknownSizeEndsAnImageWithoutAWord) {
    second_.sizeBytes = -1;
    view_.addDriveRow(first_);
    view_.addDriveRow(second_);
    view_.tick(second_);
    EXPECT_EQ(requireDriveToImage(state_), nullptr);
    EXPECT_EQ(requireDriveToImageForensically(state_), nullptr);
    view_.tick(first_);
    EXPECT_EQ(requireDriveToImage(state_), nullptr);
    EXPECT_EQ(requireDriveToImageForensically(state_), nullptr);
}

TEST_F(CommandGuardsTest, NoTickedDriveIsSaid) {
    view_.addDriveRow(first_);
    user_.expectStop("***** ERROR Choose Drive To Clone *****", "You must choose one drive to clone");
    EXPECT_EQ(requireDriveToClone(state_), nullptr);
    user_.expectStop("***** ERROR Choose Drive To Clone *****", "You must choose at least one drive to image");
    EXPECT_EQ(requireDriveToImage(state_), nullptr);
    user_.expectStop("***** ERROR Choose Drive To Image *****", "You must choose at least a drive to image");
    EXPECT_EQ(requireDriveToImageForensically(state_), nullptr);
    user_.expectStop("***** CHOOSE A DRIVE TO RESCUE *****", "Please tick the drive to rescue");
    EXPECT_EQ(requireDriveToRescue(state_), nullptr);
}

TEST_F(CommandGuardsTest, TooManyTickedDrivesAreSaid) {
    view_.tick(first_);
    view_.tick(second_);
    user_.expectStop("***** ERROR Too Many Drives *****", "You may only choose one drive to clone");
    EXPECT_EQ(requireDriveToClone(state_), nullptr);
    user_.expectStop("***** ERROR Too Many Drives *****", "You may only choose one drive to clone");
    EXPECT_EQ(requireDriveToImage(state_), nullptr);
    user_.expectStop("***** ERROR Too Many Drives *****", "You may only choose one drive to image");
    EXPECT_EQ(requireDriveToImageForensically(state_), nullptr);
}

TEST_F(CommandGuardsTest, OneTickedDriveIsHandedOver) {
    view_.tick(second_);
    EXPECT_EQ(requireDriveToClone(state_), &second_);
    EXPECT_EQ(requireDriveToImage(state_), &second_);
    EXPECT_EQ(requireDriveToImageForensically(state_), &second_);
}

TEST_F(CommandGuardsTest, EmptyDriveListIsSaid) {
    user_.expectStop("***** ERROR Listed Drives *****", "Please 'use 'Load Drives' from 'Tasks' Menu");
    EXPECT_FALSE(requireListedDrives(state_));
    view_.addDriveRow(first_);
    EXPECT_TRUE(requireListedDrives(state_));
}

TEST_F(CommandGuardsTest, NothingStartsWhileTheLastDriveJobIsAtWorkAndTheBoxSaysWhoItIs) {
    Jobs jobs;
    user_.expectStop("***** Working *****", stillAtWorkText({.kinds = {JobKind::kImage}}));
    EXPECT_FALSE(lastDriveJobIsStillEnding(jobs));
    {
        const std::optional<JobClaim> copy = jobs.begin(JobKind::kImage);
        jobs.askToStop();
        EXPECT_TRUE(lastDriveJobIsStillEnding(jobs));
    }
    EXPECT_FALSE(lastDriveJobIsStillEnding(jobs));
    ASSERT_EQ(view_.logRows().size(), 1U);
    EXPECT_EQ(view_.logRows().front().category, "STATUS");
    EXPECT_EQ(view_.logRows().front().message, "The last job on a drive has not ended yet");
}

} // namespace
} // namespace torvane::testing
