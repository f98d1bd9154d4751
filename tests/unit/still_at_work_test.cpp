#include "state/still_at_work.h"

#include "tests/support/scripted_prompts.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

constexpr const char* kAdvice =
    ".\n\nNothing was started. What was told to stop ends with the read, write or tool that it "
    "has under way. Please try again then.";

TEST(StillAtWork, NamesEveryKindInTheOrderOfTheKinds) {
    EXPECT_EQ(stillAtWorkText({.kinds = {JobKind::kNistTest, JobKind::kClone}}),
              std::string("Still at work: a clone, a NIST Read Test") + kAdvice);
    EXPECT_EQ(stillAtWorkText({.kinds = {JobKind::kScan}}), std::string("Still at work: the drive scan") + kAdvice);
    EXPECT_EQ(stillAtWorkText({.flag = true, .kinds = {}}), std::string("Still at work: a job") + kAdvice);
}

TEST(StillAtWork, ShowsABox) {
    testing::ScriptedPrompts user;
    const Jobs::Obstacle obstacle{.flag = false, .kinds = {JobKind::kDiskChange}};
    user.expectStop("***** Working *****", std::string("Still at work: a change of a disk") + kAdvice +
                                               "\n\nIf the tool that changes the disk never ends, Torvane has to "
                                               "be restarted.");
    sayWhoIsAtWork(obstacle);
}

} // namespace
} // namespace torvane
