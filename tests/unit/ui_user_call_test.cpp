#include "ui/user_call.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

TEST(UserCall, FlashesWhereTheProgramIsNotInFront) {
    EXPECT_EQ(userCallFor(true, false), (UserCall{.sound = UserCall::Sound::kDone, .flash = true}));
    EXPECT_EQ(userCallFor(true, true), (UserCall{.sound = UserCall::Sound::kDone, .flash = false}));
}

TEST(UserCall, SoundsByTheOutcome) {
    EXPECT_EQ(userCallFor(false, true), (UserCall{.sound = UserCall::Sound::kTrouble, .flash = false}));
    EXPECT_EQ(userCallFor(false, false), (UserCall{.sound = UserCall::Sound::kTrouble, .flash = true}));
}

} // namespace
} // namespace torvane
