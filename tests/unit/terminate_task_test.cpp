#include "window/terminate_task.h"

#include "jobs/jobs.h"
#include "tests/support/scripted_prompts.h"

#include <gtest/gtest.h>

#include <optional>

namespace torvane::testing {
namespace {

TEST(TerminateTaskTest, IsSilentWithoutAJob) {
    Jobs jobs;
    const ScriptedPrompts user;
    terminateCurrentTask(jobs);
    EXPECT_TRUE(user.shown().empty());
}

TEST(TerminateTaskTest, StopsTheJobOnlyOnYes) {
    Jobs jobs;
    const std::optional<JobClaim> job = jobs.begin(JobKind::kNistTest);
    ScriptedPrompts user;
    for (const bool answer : {false, true}) {
        user.expectAsk("***** STATUS TERMINATE JOB STATUS *****",
                       "You are about to TERMINATE the current job. Is that your intent?", answer);
    }
    terminateCurrentTask(jobs);
    EXPECT_TRUE(job->isRaised());
    terminateCurrentTask(jobs);
    EXPECT_FALSE(jobs.active());
    EXPECT_TRUE(job->stopAsked());
}

} // namespace
} // namespace torvane::testing
