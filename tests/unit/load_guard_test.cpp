#include "scan/load_guard.h"

#include "jobs/jobs.h"
#include "state/still_at_work.h"
#include "tests/support/scripted_prompts.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

class LoadGuard : public ::testing::Test {
  protected:
    JobClaim begin(JobKind kind) { return jobs_.begin(kind).value(); }

    testing::ScriptedPrompts user_;
    Jobs jobs_;
};

TEST_F(LoadGuard, AnIdleProgramMayLoad) {
    EXPECT_TRUE(mayLoadDrives(jobs_));
}

TEST_F(LoadGuard, IsSilentWhileAFlagIsUpWhoeverElseIsAtWork) {
    const JobClaim shortTest = begin(JobKind::kShortTest);
    JobClaim mounting = begin(JobKind::kMounting);
    ASSERT_TRUE(mounting.raise());
    EXPECT_FALSE(mayLoadDrives(jobs_));
}

TEST_F(LoadGuard, IsSilentWhileAFlagIsLeftUp) {
    {
        JobClaim failed = begin(JobKind::kMounting);
        ASSERT_TRUE(failed.raise());
        failed.leaveRaised();
    }
    EXPECT_FALSE(mayLoadDrives(jobs_));
}

TEST_F(LoadGuard, SaysWhichJobIsStillAtWorkThatWasStopped) {
    for (const JobKind kind : {JobKind::kClone, JobKind::kImage, JobKind::kForensicImage, JobKind::kImageToDrive,
                               JobKind::kDiskChange, JobKind::kCriticalTest, JobKind::kNistTest}) {
        const JobClaim job = begin(kind);
        jobs_.askToStop();
        user_.expectStop("***** Working *****", stillAtWorkText({.kinds = {kind}}));
        EXPECT_FALSE(mayLoadDrives(jobs_));
    }
}

TEST_F(LoadGuard, IsSilentWhileAScanHasItsFlagUp) {
    const JobClaim scan = begin(JobKind::kScan);
    EXPECT_FALSE(mayLoadDrives(jobs_));
}

TEST_F(LoadGuard, SaysThatTheLoaderWorksOnceItsFlagIsDown) {
    const JobClaim scan = begin(JobKind::kScan);
    jobs_.askToStop();
    user_.expectStop("***** Working *****", "Drive Loader is Working");
    EXPECT_FALSE(mayLoadDrives(jobs_));
}

TEST_F(LoadGuard, SaysThatTheShortTestRuns) {
    const JobClaim first = begin(JobKind::kShortTest);
    const JobClaim stopped = begin(JobKind::kNistTest);
    jobs_.askToStop();
    user_.expectStop("***** Load Drives *****", "Short Test is Running");
    EXPECT_FALSE(mayLoadDrives(jobs_));
}

} // namespace
} // namespace torvane
