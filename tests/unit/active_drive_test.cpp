#include "state/active_drive.h"

#include "state/app_state.h"
#include "tests/support/scripted_prompts.h"

#include <gtest/gtest.h>

namespace torvane::testing {
namespace {

class ActiveDriveTest : public ::testing::Test {
  protected:
    // NOLINTBEGIN(misc-non-private-member-variables-in-classes)
    AppState state_;
    ScriptedPrompts user_;
    DriveRecord first_;
    // NOLINTEND(misc-non-private-member-variables-in-classes)
};

TEST_F(ActiveDriveTest, NoActiveDriveIsSaid) {
    user_.expectStop("***** NO ACTIVE DRIVE *****", "Please choose a drive to view");
    EXPECT_EQ(requireActiveDrive(state_, "Please choose a drive to view"), nullptr);
}

TEST_F(ActiveDriveTest, ActiveDriveNeedsBothTheFlagAndTheRecord) {
    state_.activeDrive = &first_;
    user_.expectStop("***** NO ACTIVE DRIVE *****", "a");
    EXPECT_EQ(requireActiveDrive(state_, "a"), nullptr);

    state_.activeDrive = nullptr;
    state_.activeDriveChosen = 1;
    user_.expectStop("***** NO ACTIVE DRIVE *****", "b");
    EXPECT_EQ(requireActiveDrive(state_, "b"), nullptr);
}

TEST_F(ActiveDriveTest, ActiveDriveIsHandedOver) {
    state_.activeDrive = &first_;
    state_.activeDriveChosen = 1;
    EXPECT_TRUE(hasActiveDrive(state_));
    EXPECT_EQ(requireActiveDrive(state_, "unused"), &first_);
}

} // namespace
} // namespace torvane::testing
