#include "jobs/jobs.h"

#include "jobs/job_rules.h"

#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <utility>
#include <vector>

namespace torvane {
namespace {

constexpr std::array kAllKinds{JobKind::kScan,          JobKind::kClone,        JobKind::kImage,
                               JobKind::kForensicImage, JobKind::kImageToDrive, JobKind::kRescue,
                               JobKind::kVerifyImage,   JobKind::kDiskChange,   JobKind::kMounting,
                               JobKind::kShortTest,     JobKind::kCriticalTest, JobKind::kNistTest};
static_assert(kAllKinds.size() == kJobKinds);

JobClaim begun(Jobs& jobs, JobKind kind) {
    std::optional<JobClaim> claim = jobs.begin(kind);
    EXPECT_TRUE(claim) << static_cast<int>(kind);
    return std::move(claim).value();
}

/// Who may begin while `kind` is at work and its flag is down.
JobKinds mayBeginBeside(JobKind kind) {
    Jobs jobs;
    JobClaim claim = begun(jobs, kind);
    claim.lower();
    JobKinds beside;
    for (const JobKind other : kAllKinds) {
        if (jobs.begin(other)) {
            beside.add(other);
        }
    }
    return beside;
}

TEST(JobKinds, AreASet) {
    JobKinds kinds{JobKind::kScan, JobKind::kClone};
    EXPECT_TRUE(kinds.contains(JobKind::kScan));
    EXPECT_FALSE(kinds.contains(JobKind::kImage));
    EXPECT_TRUE((kinds & kReadTests).empty());
    EXPECT_EQ(kinds & kDriveJobs, JobKinds{JobKind::kClone});
    kinds.add(JobKind::kImage);
    EXPECT_EQ(kinds | kScanAlone, (JobKinds{JobKind::kImage, JobKind::kScan, JobKind::kClone}));
    EXPECT_TRUE(JobKinds().empty());
}

TEST(Jobs, NobodyIsAtWorkAtFirst) {
    const Jobs jobs;
    EXPECT_FALSE(jobs.active());
    EXPECT_TRUE(jobs.atWork().empty());
    for (const JobKind kind : kAllKinds) {
        EXPECT_FALSE(jobs.whyNot(kind)) << static_cast<int>(kind);
    }
}

TEST(Jobs, AClaimCountsAsAtWorkUntilItEnds) {
    for (const JobKind kind : kAllKinds) {
        Jobs jobs;
        {
            const JobClaim claim = begun(jobs, kind);
            EXPECT_EQ(jobs.atWork(), JobKinds{kind});
        }
        EXPECT_TRUE(jobs.atWork().empty());
        EXPECT_FALSE(jobs.active());
    }
}

TEST(Jobs, TheFlagIsUpFromTheBeginOrWhenItIsRaisedOrNever) {
    for (const JobKind kind : kAllKinds) {
        Jobs jobs;
        const JobClaim claim = begun(jobs, kind);
        const bool fromBegin = kind == JobKind::kScan || kind == JobKind::kDiskChange ||
                               kind == JobKind::kCriticalTest || kind == JobKind::kNistTest;
        EXPECT_EQ(jobs.active(), fromBegin) << static_cast<int>(kind);
        EXPECT_EQ(claim.isRaised(), fromBegin);
    }
}

TEST(Jobs, ACopyRaisesAndLowersItsFlag) {
    Jobs jobs;
    JobClaim claim = begun(jobs, JobKind::kClone);
    EXPECT_TRUE(claim.raise());
    EXPECT_TRUE(claim.isRaised());
    EXPECT_TRUE(jobs.active());
    claim.lower();
    EXPECT_FALSE(claim.isRaised());
    EXPECT_FALSE(jobs.active());
    EXPECT_EQ(jobs.atWork(), JobKinds{JobKind::kClone}) << "it may have more to do with its drives";
}

TEST(Jobs, WhoIsAtWorkKeepsOthersWaitingWhateverItsFlag) {
    const JobKinds everybody = kRecordUsers | JobKinds{JobKind::kScan, JobKind::kMounting, JobKind::kVerifyImage};
    EXPECT_EQ(mayBeginBeside(JobKind::kScan), JobKinds{JobKind::kMounting});
    for (const JobKind copy : {JobKind::kClone, JobKind::kImage, JobKind::kForensicImage, JobKind::kImageToDrive,
                               JobKind::kRescue, JobKind::kDiskChange}) {
        EXPECT_EQ(mayBeginBeside(copy), (JobKinds{JobKind::kMounting, JobKind::kShortTest}));
    }
    EXPECT_EQ(mayBeginBeside(JobKind::kMounting), everybody);
    for (const JobKind test : {JobKind::kShortTest, JobKind::kCriticalTest, JobKind::kNistTest}) {
        EXPECT_EQ(mayBeginBeside(test),
                  (kReadTests | JobKinds{JobKind::kMounting, JobKind::kClone, JobKind::kImage, JobKind::kForensicImage,
                                         JobKind::kImageToDrive, JobKind::kRescue, JobKind::kVerifyImage}));
    }
}

// It reads a file alone, but shares the copies' dialog with them.
TEST(Jobs, AVerificationOfAnImageKeepsCopiesWaitingAlone) {
    EXPECT_EQ(mayBeginBeside(JobKind::kVerifyImage),
              (kReadTests | JobKinds{JobKind::kScan, JobKind::kDiskChange, JobKind::kMounting}));
}

TEST(Jobs, AFlagThatIsUpKeepsThoseWaitingThatAskForIt) {
    Jobs jobs;
    JobClaim mounting = begun(jobs, JobKind::kMounting);
    ASSERT_TRUE(mounting.raise());
    for (const JobKind kind : kAllKinds) {
        const bool asks = kind == JobKind::kScan || kind == JobKind::kClone || kind == JobKind::kImageToDrive ||
                          kind == JobKind::kRescue || kind == JobKind::kVerifyImage || kind == JobKind::kDiskChange;
        EXPECT_EQ(jobs.whyNot(kind).flag, asks) << static_cast<int>(kind);
        EXPECT_EQ(jobs.begin(kind).has_value(), !asks) << static_cast<int>(kind);
    }
}

TEST(Jobs, TellWhichKindStandsInTheWay) {
    Jobs jobs;
    const JobClaim first = begun(jobs, JobKind::kShortTest);
    const JobClaim second = begun(jobs, JobKind::kNistTest);
    const Jobs::Obstacle obstacle = jobs.whyNot(JobKind::kScan);
    EXPECT_TRUE(obstacle);
    EXPECT_TRUE(obstacle.flag);
    EXPECT_EQ(obstacle.kinds, (JobKinds{JobKind::kShortTest, JobKind::kNistTest}));
}

TEST(Jobs, AskedToStopAJobStaysDownWhateverOthersRaise) {
    Jobs jobs;
    JobClaim stopped = begun(jobs, JobKind::kCriticalTest);
    EXPECT_FALSE(stopped.stopAsked());
    jobs.askToStop();
    EXPECT_TRUE(stopped.stopAsked());
    EXPECT_FALSE(jobs.active());
    const JobClaim next = begun(jobs, JobKind::kCriticalTest);
    EXPECT_TRUE(next.isRaised());
    EXPECT_FALSE(next.stopAsked());
    EXPECT_FALSE(stopped.isRaised());
    EXPECT_FALSE(stopped.raise());
    stopped.lower();
    EXPECT_TRUE(next.isRaised()) << "what is up is another's";
}

TEST(Jobs, AJobIsAlsoAskedBeforeItHasRaisedItsFlag) {
    Jobs jobs;
    JobClaim claim = begun(jobs, JobKind::kForensicImage);
    jobs.askToStop();
    EXPECT_FALSE(claim.raise());
    EXPECT_FALSE(jobs.active());
}

TEST(Jobs, DiskChangeMountingAndShortTestPayNoHeed) {
    for (const JobKind kind : {JobKind::kDiskChange, JobKind::kMounting, JobKind::kShortTest}) {
        Jobs jobs;
        const JobClaim claim = begun(jobs, kind);
        jobs.askToStop();
        EXPECT_FALSE(jobs.active()) << "the flag goes down all the same";
        EXPECT_FALSE(claim.stopAsked());
        EXPECT_EQ(jobs.atWork(), JobKinds{kind});
    }
}

TEST(Jobs, AScanHeedsAStopAndIsAtWorkUntilItsEnd) {
    Jobs jobs;
    JobClaim claim = begun(jobs, JobKind::kScan);
    jobs.askToStop();
    EXPECT_TRUE(claim.stopAsked());
    EXPECT_FALSE(claim.raise());
    EXPECT_FALSE(jobs.active());
    EXPECT_EQ(jobs.whyNot(JobKind::kScan).kinds, JobKinds{JobKind::kScan});
}

TEST(Jobs, AFlagThatIsLeftStaysUpUntilSomebodyIsAskedToStop) {
    Jobs jobs;
    {
        JobClaim claim = begun(jobs, JobKind::kMounting);
        ASSERT_TRUE(claim.raise());
        claim.leaveRaised();
    }
    EXPECT_TRUE(jobs.active());
    EXPECT_TRUE(jobs.atWork().empty());
    EXPECT_TRUE(jobs.whyNot(JobKind::kScan).flag);
    EXPECT_FALSE(jobs.whyNot(JobKind::kImage)) << "an image may be tried again at once";
    jobs.askToStop();
    EXPECT_FALSE(jobs.active());
}

TEST(Jobs, AFlagThatIsLeftGoesDownWithAnothers) {
    Jobs jobs;
    {
        JobClaim claim = begun(jobs, JobKind::kImage);
        ASSERT_TRUE(claim.raise());
        claim.leaveRaised();
    }
    JobClaim next = begun(jobs, JobKind::kImage);
    next.lower();
    EXPECT_TRUE(jobs.active()) << "nothing of its own was up";
    ASSERT_TRUE(next.raise());
    next.lower();
    EXPECT_FALSE(jobs.active());
}

TEST(Jobs, AFlagThatIsDownIsNotLeft) {
    for (const bool asked : {false, true}) {
        Jobs jobs;
        {
            JobClaim claim = begun(jobs, JobKind::kImage);
            claim.leaveRaised();
            if (asked) {
                ASSERT_TRUE(claim.raise());
                jobs.askToStop();
            }
        }
        EXPECT_FALSE(jobs.active());
    }
}

TEST(Jobs, AMountingChangeRaisesNoFlagWhereAScanOrADriveJobIsAtWork) {
    for (const JobKind holder : {JobKind::kScan, JobKind::kClone, JobKind::kImage, JobKind::kForensicImage,
                                 JobKind::kImageToDrive, JobKind::kDiskChange}) {
        Jobs jobs;
        JobClaim holding = begun(jobs, holder);
        JobClaim mounting = begun(jobs, JobKind::kMounting);
        EXPECT_FALSE(mounting.raise());
        EXPECT_FALSE(mounting.isRaised());
        const bool up = jobs.active();
        mounting.lower();
        EXPECT_EQ(jobs.active(), up);
    }
    for (const JobKind other : {JobKind::kMounting, JobKind::kShortTest, JobKind::kCriticalTest}) {
        Jobs jobs;
        const JobClaim beside = begun(jobs, other);
        EXPECT_TRUE(begun(jobs, JobKind::kMounting).raise());
    }
}

TEST(Jobs, AMountingChangeThatNeverRaisedItsFlagLeavesALeftOneUp) {
    Jobs jobs;
    {
        JobClaim failed = begun(jobs, JobKind::kMounting);
        ASSERT_TRUE(failed.raise());
        failed.leaveRaised();
    }
    static_cast<void>(begun(jobs, JobKind::kMounting));
    EXPECT_TRUE(jobs.active());
}

TEST(Jobs, OfTwoMountingChangesEachLowersItsOwnFlag) {
    Jobs jobs;
    JobClaim first = begun(jobs, JobKind::kMounting);
    JobClaim second = begun(jobs, JobKind::kMounting);
    ASSERT_TRUE(first.raise() && second.raise());
    first.lower();
    EXPECT_TRUE(jobs.active());
    EXPECT_TRUE(second.isRaised());
    second.lower();
    EXPECT_FALSE(jobs.active());
}

TEST(Jobs, AMountingChangeThatEndsStopsNobody) {
    Jobs jobs;
    JobClaim mounting = begun(jobs, JobKind::kMounting);
    ASSERT_TRUE(mounting.raise());
    const JobClaim test = begun(jobs, JobKind::kNistTest);
    mounting.lower();
    EXPECT_TRUE(test.isRaised());
    EXPECT_FALSE(test.stopAsked());
}

TEST(Jobs, RaisedAnewAStoppedJobGoesOnAndHeedsTheNextStop) {
    Jobs jobs;
    JobClaim claim = begun(jobs, JobKind::kForensicImage);
    ASSERT_TRUE(claim.raise());
    jobs.askToStop();
    claim.raiseAnew();
    EXPECT_TRUE(claim.isRaised());
    EXPECT_FALSE(claim.stopAsked());
    EXPECT_TRUE(jobs.active());
    jobs.askToStop();
    EXPECT_FALSE(claim.isRaised());
    EXPECT_TRUE(claim.stopAsked());
    EXPECT_FALSE(claim.raise());
}

TEST(Jobs, AReadTestThatNeverRanEndsTheOthersLikeOneThatDid) {
    Jobs jobs;
    const JobClaim running = begun(jobs, JobKind::kCriticalTest);
    static_cast<void>(begun(jobs, JobKind::kNistTest));
    EXPECT_TRUE(running.stopAsked());
    EXPECT_FALSE(jobs.active());
}

TEST(Jobs, OfReadTestsTheFirstToEndEndsTheOthersButForTheShortTest) {
    Jobs jobs;
    JobClaim first = begun(jobs, JobKind::kCriticalTest);
    const JobClaim second = begun(jobs, JobKind::kNistTest);
    const JobClaim shortTest = begun(jobs, JobKind::kShortTest);
    JobClaim mounting = begun(jobs, JobKind::kMounting);
    ASSERT_TRUE(mounting.raise());
    first.lower();
    EXPECT_FALSE(second.isRaised());
    EXPECT_TRUE(second.stopAsked());
    EXPECT_FALSE(shortTest.stopAsked());
    EXPECT_TRUE(mounting.isRaised());
}

TEST(JobClaim, TravelsAndEndsOnce) {
    Jobs jobs;
    std::optional<JobClaim> here = jobs.begin(JobKind::kScan);
    ASSERT_TRUE(here);
    JobClaim there = std::move(*here);
    here.reset();
    EXPECT_TRUE(there.isRaised());
    JobClaim mounting = begun(jobs, JobKind::kMounting);
    there = std::move(mounting);
    EXPECT_EQ(jobs.atWork(), JobKinds{JobKind::kMounting}) << "the scan ended where its claim was replaced";
    JobClaim& itself = there;
    there = std::move(itself);
    EXPECT_EQ(jobs.atWork(), JobKinds{JobKind::kMounting});
}

TEST(JobsWatch, HearsOfEveryBeginningAndEnd) {
    Jobs jobs;
    std::vector<bool> clonesAtWork;
    jobs.watch([&] { clonesAtWork.push_back(jobs.atWork().contains(JobKind::kClone)); });
    {
        std::optional<JobClaim> clone = jobs.begin(JobKind::kClone);
        EXPECT_EQ(clonesAtWork, (std::vector{true}));
        EXPECT_FALSE(jobs.begin(JobKind::kClone)) << "one that is refused has not begun";
        const JobClaim moved = std::move(*clone);
        clone.reset();
        EXPECT_EQ(clonesAtWork, (std::vector{true}));
    }
    EXPECT_EQ(clonesAtWork, (std::vector{true, false}));
}

} // namespace
} // namespace torvane
