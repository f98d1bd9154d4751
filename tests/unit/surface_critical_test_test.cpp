#include "tests/unit/surface_scripted_system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace torvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::ReadRequest;
using testing::ScriptedReadTest;
using ::testing::SizeIs;

constexpr std::uint64_t kBlock = 0x2000000;
constexpr std::uint64_t kGibibyte = 0x40000000;

std::uint32_t run(ScriptedReadTest& test) {
    return test.run(kCriticalReadTest, runCriticalTest);
}

TEST(CriticalReadTest, ReadsTheFirstFiveGibibytesAndTheLastOne) {
    constexpr std::uint64_t kSize = 20 * kGibibyte + 512;
    ScriptedReadTest test(kSize);
    EXPECT_EQ(run(test), 1U);
    std::vector<ReadRequest> expected;
    expected.reserve(160 + 32);
    for (std::uint64_t k = 0; k < 160; ++k) {
        expected.push_back({k * kBlock, kBlock});
    }
    for (std::uint64_t k = 0; k < 32; ++k) {
        expected.push_back({kSize - kGibibyte + k * kBlock, kBlock});
    }
    EXPECT_EQ(test.reads, expected);
    EXPECT_EQ(test.drive.criticalTestResult, ReadTestResult::kPassed);
    EXPECT_THAT(test.statuses, ElementsAre("Critical Read Test PHASE 1 STARTED", "Phase 1 PASSED Critical Read Test",
                                           "PASSED Critical Read Test"));
    EXPECT_FALSE(test.jobs.active());
    EXPECT_THAT(test.logRows, IsEmpty());
    EXPECT_EQ(test.driveStatuses.front(), "Critical Read Test 0%");
    EXPECT_EQ(test.driveStatuses.back(), "COMPLETED Critical Read Test PASSED");
}

TEST(CriticalReadTest, MovesTheDialogsBarOverEachPhase) {
    ScriptedReadTest test(20 * kGibibyte);
    run(test);
    std::vector<std::string> expected = {"0..160"};
    for (int k = 0; k < 160; ++k) {
        expected.push_back(std::to_string(k));
    }
    expected.emplace_back("0..32");
    for (int k = 0; k < 32; ++k) {
        expected.push_back(std::to_string(k));
    }
    expected.emplace_back("0");
    EXPECT_EQ(test.progress, expected);
    EXPECT_THAT(test.wideProgress, IsEmpty());
}

TEST(CriticalReadTest, ReadsWithoutTiming) {
    ScriptedReadTest test(20 * kGibibyte);
    run(test);
    EXPECT_EQ(test.drive.readTimes.lastReadEnd, 0);
    EXPECT_THAT(test.seeks, ElementsAre(0U, 19 * kGibibyte)) << "one move of the file pointer for each phase";
    EXPECT_THAT(test.allocations, ElementsAre(kBlock, kBlock));
}

TEST(CriticalReadTest, FailureInTheFirstPhaseEndsItAndStands) {
    ScriptedReadTest test(20 * kGibibyte);
    test.readFails = [](const ReadRequest& read) { return read.offset == 3 * kBlock; };
    EXPECT_EQ(run(test), 1U);
    EXPECT_THAT(test.reads, SizeIs(4));
    EXPECT_EQ(test.drive.criticalTestResult, ReadTestResult::kFailed);
    EXPECT_EQ(test.statuses.back(), "Phase 1 Critical Read Test FAILED");
    EXPECT_FALSE(test.jobs.active());
    EXPECT_EQ(test.progress.back(), "0");
    EXPECT_THAT(test.logRows, IsEmpty());
    EXPECT_EQ(test.driveStatuses.back(), "BAD Critical Read Test FAILED at sector 196608");
}

TEST(CriticalReadTest, FailureInTheSecondPhaseSaysSo) {
    ScriptedReadTest test(20 * kGibibyte, 4096);
    test.readFails = [](const ReadRequest& read) { return read.offset == 19 * kGibibyte + kBlock; };
    EXPECT_EQ(run(test), 1U);
    EXPECT_THAT(test.reads, SizeIs(162));
    EXPECT_EQ(test.drive.criticalTestResult, ReadTestResult::kFailed);
    EXPECT_THAT(test.statuses, ElementsAre("Critical Read Test PHASE 1 STARTED", "Phase 1 PASSED Critical Read Test",
                                           "Phase 2 Critical Read Test FAILED"));
    EXPECT_FALSE(test.jobs.active());
    EXPECT_EQ(test.driveStatuses.back(), "BAD Critical Read Test FAILED at sector 4988928");
}

TEST(CriticalReadTest, OfFourGibibytesFailsWhereTheFirstPhasePassesTheEnd) {
    ScriptedReadTest test(4 * kGibibyte);
    run(test);
    EXPECT_THAT(test.reads, SizeIs(129));
    EXPECT_EQ(test.reads.back(), (ReadRequest{4 * kGibibyte, kBlock}));
    EXPECT_EQ(test.drive.criticalTestResult, ReadTestResult::kFailed);
    EXPECT_EQ(test.statuses.back(), "Phase 1 Critical Read Test FAILED");
}

TEST(CriticalReadTest, OfExactlyFiveGibibytesPasses) {
    ScriptedReadTest test(5 * kGibibyte);
    run(test);
    EXPECT_THAT(test.reads, SizeIs(192));
    EXPECT_EQ(test.drive.criticalTestResult, ReadTestResult::kPassed);
}

TEST(CriticalReadTest, StopsAfterTheBlockInWhichItIsTold) {
    ScriptedReadTest test(20 * kGibibyte);
    test.afterRead = [&] {
        if (test.reads.size() == 5) {
            test.jobs.askToStop();
        }
    };
    EXPECT_EQ(run(test), 1U);
    EXPECT_THAT(test.reads, SizeIs(5));
    EXPECT_EQ(test.drive.criticalTestResult, ReadTestResult::kTerminated);
    EXPECT_EQ(test.statuses.back(), "Phase 1 Critical Read Test User Terminated");
    EXPECT_EQ(test.progress.back(), "0");
    EXPECT_EQ(test.driveStatuses.back(), "BAD Critical Read Test TERMINATED");
}

TEST(CriticalReadTest, StopsInTheSecondPhaseToo) {
    ScriptedReadTest test(20 * kGibibyte);
    test.afterRead = [&] {
        if (test.reads.size() == 161) {
            test.jobs.askToStop();
        }
    };
    run(test);
    EXPECT_THAT(test.reads, SizeIs(161));
    EXPECT_EQ(test.drive.criticalTestResult, ReadTestResult::kTerminated);
    EXPECT_EQ(test.statuses.back(), "Phase 2 Critical Read Test User Terminated");
}

TEST(CriticalReadTest, AFailedReadCountsMoreThanTheOrderToStop) {
    ScriptedReadTest test(20 * kGibibyte);
    test.readFails = [&](const ReadRequest&) {
        test.jobs.askToStop();
        return true;
    };
    run(test);
    EXPECT_EQ(test.drive.criticalTestResult, ReadTestResult::kFailed);
}

TEST(CriticalReadTest, APhaseWhoseStartCannotBeReachedCountsAsPassed) {
    ScriptedReadTest test(20 * kGibibyte);
    test.seekFails = [](std::uint64_t offset) { return offset == 0; };
    run(test);
    EXPECT_THAT(test.reads, SizeIs(32));
    EXPECT_EQ(test.drive.criticalTestResult, ReadTestResult::kPassed);
    EXPECT_EQ(test.statuses[1], "Phase 1 PASSED Critical Read Test");

    ScriptedReadTest last(20 * kGibibyte);
    last.seekFails = [](std::uint64_t offset) { return offset != 0; };
    run(last);
    EXPECT_THAT(last.reads, SizeIs(160));
    EXPECT_EQ(last.statuses.back(), "PASSED Critical Read Test");
}

TEST(CriticalReadTest, SecondPhaseOfADriveUnderOneGibibyteStartsBeforeIt) {
    ScriptedReadTest test(kGibibyte / 2);
    test.seekFails = [](std::uint64_t offset) { return offset == 0; };
    run(test);
    EXPECT_THAT(test.seeks, ElementsAre(0U, static_cast<std::uint64_t>(0) - kGibibyte / 2));
    EXPECT_EQ(test.drive.criticalTestResult, ReadTestResult::kFailed);
}

TEST(CriticalReadTest, WithoutMemoryFails) {
    ScriptedReadTest test(20 * kGibibyte);
    test.mostMemory = kBlock - 1;
    run(test);
    EXPECT_THAT(test.reads, IsEmpty());
    EXPECT_EQ(test.drive.criticalTestResult, ReadTestResult::kFailed);
    EXPECT_EQ(test.driveStatuses.back(), "BAD Critical Read Test FAILED");
    EXPECT_FALSE(test.jobs.active());
}

TEST(ReadRange, LeavesARecordThatPassesAsItIs) {
    ScriptedReadTest test(20 * kGibibyte);
    ReadTestJob job = test.makeJob(kCriticalReadTest);
    EXPECT_EQ(ReadRange(job, {.blockBytes = 512, .blockCount = 3, .startByte = 1024, .blocksBefore = 0}),
              ReadTestResult::kPassed);
    EXPECT_THAT(test.reads, ElementsAre(ReadRequest{1024, 512}, ReadRequest{1536, 512}, ReadRequest{2048, 512}));
    EXPECT_EQ(test.drive.criticalTestResult, ReadTestResult::kNotPerformed);
    test.seekFails = [](std::uint64_t) { return true; };
    EXPECT_EQ(ReadRange(job, {.blockBytes = 512, .blockCount = 3, .startByte = 1024, .blocksBefore = 0}), std::nullopt);
}

TEST(ReadRange, KeepsHowItsReadFailed) {
    for (const TransferOutcome outcome : {TransferOutcome::kFailed, TransferOutcome::kGone}) {
        ScriptedReadTest test(20 * kGibibyte);
        test.readFails = [](const ReadRequest& read) { return read.offset == 1536; };
        test.failure = outcome;
        ReadTestJob job = test.makeJob(kCriticalReadTest);
        EXPECT_EQ(ReadRange(job, {.blockBytes = 512, .blockCount = 3, .startByte = 1024, .blocksBefore = 0}),
                  ReadTestResult::kFailed);
        ASSERT_TRUE(job.failedRead);
        EXPECT_EQ(job.failedRead->sector, 3);
        EXPECT_EQ(job.failedRead->outcome, outcome);
    }
}

} // namespace
} // namespace torvane
