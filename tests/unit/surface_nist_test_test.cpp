#include "tests/unit/surface_scripted_system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace torvane {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using testing::ReadRequest;
using testing::RuntimeNumbers;
using testing::ScriptedReadTest;
using ::testing::SizeIs;

constexpr std::uint64_t kBlock = 0x2000000;
constexpr std::uint64_t kGibibyte = 0x40000000;

std::uint32_t run(ScriptedReadTest& test) {
    return test.run(kNistReadTest, runNistTest);
}

RandomNumbers numbersOf(std::vector<int> numbers) {
    return [numbers = std::move(numbers), next = std::size_t{0}]() mutable {
        EXPECT_LT(next, numbers.size()) << "one draw too many";
        return next < numbers.size() ? numbers[next++] : 0;
    };
}

// --- Where the runs begin ---

TEST(NistSampling, RuntimeGeneratorStartsAsItDoes) {
    RuntimeNumbers numbers;
    EXPECT_EQ(numbers.next(), 41);
    EXPECT_EQ(numbers.next(), 18467);
}

TEST(NistSampling, FractionIsMadeOfTwoNumbersTheLowHalfFirst) {
    EXPECT_EQ(randomFraction(numbersOf({41, 18467})), (41 + 18467 * 65536.0) / 4294967295.0);
    EXPECT_EQ(randomFraction(numbersOf({0, 0})), 0.0);
}

TEST(NistSampling, FractionStaysBelowOneHalf) {
    const double most = randomFraction(numbersOf({32767, 32767}));
    EXPECT_LT(most, 0.5);
    EXPECT_GT(most, 0.49999);
}

TEST(NistSampling, BothStartsLieInTheFirstHalfOfTheFreeSpan) {
    RuntimeNumbers numbers;
    for (int i = 0; i < 20000; ++i) {
        const TwoStarts starts = PickTwoStarts({5000, 1000}, 50, [&] { return numbers.next(); });
        for (const std::int64_t start : {starts.first, starts.second}) {
            EXPECT_GE(start, 5000);
            EXPECT_LT(start, 5000 + 475);
        }
        EXPECT_NE(starts.second, starts.first + 50);
    }
}

TEST(NistSampling, SecondStartIsDrawnAnewWhileItFollowsTheFirstRunExactly) {
    // Of a span of 65536 * 20, a high half of n gives n * 20 (and a bit).
    const NistSegment segment{0, 65536 * 20 + 20};
    EXPECT_EQ(PickTwoStarts(segment, 20, numbersOf({1, 100, 1, 101, 1, 101, 1, 250})), (TwoStarts{2000, 5000}));
    // One that overlaps the first run, or begins where it does, is accepted.
    EXPECT_EQ(PickTwoStarts(segment, 20, numbersOf({1, 100, 1, 100})), (TwoStarts{2000, 2000}));
}

TEST(NistSampling, OfASegmentWithOnePlaceDrawsOnce) {
    // Nothing is read there, and no draw could give another place.
    for (const std::uint64_t sectors : {0U, 1U, 2U}) {
        EXPECT_EQ(PickTwoStarts({sectors == 0 ? 0 : 700, sectors}, 0, numbersOf({32767, 32767, 32767, 32767})),
                  (TwoStarts{sectors == 0 ? 0 : 700, sectors == 0 ? 0 : 700}));
    }
    EXPECT_EQ(PickTwoStarts({0, 3}, 0, numbersOf({0, 0, 0, 0, 32767, 32767})), (TwoStarts{0, 1}));
}

// --- One segment ---

TEST(ProbeNistSegment, ReadsWholeBlocksThenTheRestAtEachStart) {
    ScriptedReadTest test(100 * kGibibyte);
    ReadTestJob job = test.makeJob(kNistReadTest);
    SegmentBuffer buffer(test);
    const NistSegment segment{1000000, 20 * (2 * 65536 + 10)};
    const TwoStarts starts =
        PickTwoStarts(segment, 2 * 65536 + 10, [numbers = RuntimeNumbers()]() mutable { return numbers.next(); });
    EXPECT_TRUE(ProbeNistSegment(job, buffer, segment));
    const auto at = [](std::int64_t sector) { return static_cast<std::uint64_t>(sector) * 512; };
    EXPECT_THAT(test.reads,
                ElementsAre(ReadRequest{at(starts.first), kBlock}, ReadRequest{at(starts.first + 65536), kBlock},
                            ReadRequest{at(starts.first + 131072), 5120}, ReadRequest{at(starts.second), kBlock},
                            ReadRequest{at(starts.second + 65536), kBlock},
                            ReadRequest{at(starts.second + 131072), 5120}));
}

TEST(ProbeNistSegment, OfWholeBlocksHasNoRest) {
    ScriptedReadTest test(100 * kGibibyte);
    ReadTestJob job = test.makeJob(kNistReadTest);
    SegmentBuffer buffer(test);
    EXPECT_TRUE(ProbeNistSegment(job, buffer, {0, 20 * 65536}));
    ASSERT_THAT(test.reads, SizeIs(2));
    EXPECT_EQ(test.reads[0].length, kBlock);
    EXPECT_EQ(test.reads[1].length, kBlock);
}

TEST(ProbeNistSegment, WithLargeSectorsLeavesGapsBetweenTheBlocks) {
    ScriptedReadTest test(1000 * kGibibyte, 4096);
    test.numbers = [] { return 0; };
    ReadTestJob job = test.makeJob(kNistReadTest);
    SegmentBuffer buffer(test);
    EXPECT_TRUE(ProbeNistSegment(job, buffer, {0, 20 * (2 * 65536)}));
    EXPECT_THAT(test.reads, ElementsAre(ReadRequest{0, kBlock}, ReadRequest{65536 * 4096, kBlock},
                                        ReadRequest{0, kBlock}, ReadRequest{65536 * 4096, kBlock}));
}

TEST(ProbeNistSegment, WithLargeSectorsReadsARestLongerThanABlockInOne) {
    ScriptedReadTest test(1000 * kGibibyte, 4096);
    test.numbers = [] { return 0; };
    ReadTestJob job = test.makeJob(kNistReadTest);
    SegmentBuffer buffer(test);
    EXPECT_TRUE(ProbeNistSegment(job, buffer, {0, 20 * 10000}));
    EXPECT_THAT(test.reads, ElementsAre(ReadRequest{0, 40960000}, ReadRequest{0, 40960000}));
    EXPECT_THAT(test.allocations, ElementsAre(40960000U));
}

TEST(ProbeNistSegment, FailsAtTheFirstFailedReadOfEitherRun) {
    for (const std::size_t failing : {1U, 2U}) {
        ScriptedReadTest test(100 * kGibibyte);
        test.readFails = [&](const ReadRequest&) { return test.reads.size() == failing; };
        ReadTestJob job = test.makeJob(kNistReadTest);
        SegmentBuffer buffer(test);
        EXPECT_FALSE(ProbeNistSegment(job, buffer, {0, 2000}));
        EXPECT_THAT(test.reads, SizeIs(failing));
        EXPECT_THAT(test.logRows, SizeIs(1));
    }
}

TEST(ProbeNistSegment, FailsAtAWholeBlockAsAtTheRest) {
    for (std::size_t failing = 1; failing <= 6; ++failing) {
        ScriptedReadTest test(100 * kGibibyte);
        test.readFails = [&](const ReadRequest&) { return test.reads.size() == failing; };
        ReadTestJob job = test.makeJob(kNistReadTest);
        SegmentBuffer buffer(test);
        EXPECT_FALSE(ProbeNistSegment(job, buffer, {0, 20 * (2 * 65536 + 10)}));
        EXPECT_THAT(test.reads, SizeIs(failing));
        EXPECT_EQ(test.reads.back().length, failing % 3 == 0 ? 5120 : kBlock);
        EXPECT_THAT(test.logRows, SizeIs(1));
    }
}

TEST(ProbeNistSegment, WithoutMemoryFails) {
    ScriptedReadTest test(100 * kGibibyte);
    test.mostMemory = kBlock - 1;
    ReadTestJob job = test.makeJob(kNistReadTest);
    SegmentBuffer buffer(test);
    EXPECT_FALSE(ProbeNistSegment(job, buffer, {0, 2000}));
    EXPECT_THAT(test.reads, IsEmpty());
    EXPECT_THAT(test.logRows, IsEmpty());
}

TEST(ProbeNistSegment, WithUnbelievableSectorsHasNoMemory) {
    ScriptedReadTest test(1ULL << 62, 1 << 30);
    ReadTestJob job = test.makeJob(kNistReadTest);
    SegmentBuffer buffer(test);
    EXPECT_FALSE(ProbeNistSegment(job, buffer, {0, 20 * 65535}));
    EXPECT_THAT(test.allocations, IsEmpty());
}

// --- The whole test ---

TEST(NistReadTest, SamplesTheFirstThousandOfAThousandAndOneSegments) {
    ScriptedReadTest test(500 * kGibibyte);
    EXPECT_EQ(run(test), 1U);
    const std::uint64_t segment = 500 * kGibibyte / 512 / 1001;
    const std::uint64_t runSectors = segment / 20;
    ASSERT_LT(runSectors, 65536U);
    ASSERT_THAT(test.reads, SizeIs(2000));
    RuntimeNumbers numbers;
    for (std::uint64_t i = 0; i < 1000; ++i) {
        const TwoStarts starts = PickTwoStarts({static_cast<std::int64_t>(i * segment), segment}, runSectors,
                                               [&] { return numbers.next(); });
        EXPECT_EQ(test.reads[2 * i], (ReadRequest{static_cast<std::uint64_t>(starts.first) * 512, runSectors * 512}));
        EXPECT_EQ(test.reads[2 * i + 1],
                  (ReadRequest{static_cast<std::uint64_t>(starts.second) * 512, runSectors * 512}));
    }
    EXPECT_EQ(test.drive.nistTestResult, ReadTestResult::kPassed);
    EXPECT_FALSE(test.jobs.active());
    EXPECT_EQ(test.driveStatuses.front(), "NIST Read Test 0%");
    EXPECT_EQ(test.driveStatuses.back(), "COMPLETED NIST Read Test PASSED");
    EXPECT_THAT(test.driveStatuses, SizeIs(102)) << "only a new percent is shown";
}

// The first sectors of a drive of 500 GiB, as the C runtime's generator gives them.
TEST(NistReadTest, VisitsTheseSectors) {
    ScriptedReadTest test(500 * kGibibyte);
    run(test);
    std::vector<std::uint64_t> sectors;
    sectors.reserve(20);
    for (std::size_t i = 0; i < 20; ++i) {
        sectors.push_back(test.reads[i].offset / 512);
    }
    EXPECT_THAT(sectors, ElementsAreArray({280417,  402399,  1286298, 1493326, 2466543, 2522433, 3398104,
                                           3150042, 4371449, 4272657, 5459406, 5239964, 6473186, 6569371,
                                           7634802, 7662602, 8555429, 8682584, 9827103, 9577994}));
}

TEST(NistReadTest, ShowsEachSegmentAndMovesTheDialogsBar) {
    ScriptedReadTest test(500 * kGibibyte);
    run(test);
    std::vector<std::string> statuses = {"NIST Read Test STARTED"};
    std::vector<std::string> progress = {"0..1000"};
    for (int i = 0; i < 1000; ++i) {
        statuses.push_back("Testing [" + std::to_string(i * 1047528LL) + "]");
        progress.push_back(std::to_string(i));
    }
    statuses.emplace_back("NIST Read Test -- PASSED");
    progress.emplace_back("0");
    EXPECT_EQ(test.statuses, statuses);
    EXPECT_EQ(test.progress, progress);
    EXPECT_THAT(test.wideProgress, IsEmpty());
}

TEST(NistReadTest, FailureNamesTheSegmentsFirstSectorAndEndsIt) {
    ScriptedReadTest test(500 * kGibibyte);
    test.readFails = [&](const ReadRequest&) { return test.reads.size() == 8; };
    EXPECT_EQ(run(test), 1U);
    EXPECT_THAT(test.reads, SizeIs(8));
    EXPECT_EQ(test.drive.nistTestResult, ReadTestResult::kFailed);
    ASSERT_GE(test.statuses.size(), 2U);
    EXPECT_EQ(test.statuses[test.statuses.size() - 2], "NIST Read FAILED at Sector [3142584]");
    EXPECT_EQ(test.statuses.back(), "NIST Read Test -- FAILED Found Read Errors");
    const std::string sector = std::to_string(test.reads.back().offset / 512);
    EXPECT_THAT(test.logRows, ElementsAre("ERROR: BAD READ BLOCK AT SECTOR: [" + sector + "] for <26816512> bytes"));
    EXPECT_EQ(test.driveStatuses.back(), "BAD NIST Read Test FAILED at sector " + sector);
    EXPECT_FALSE(test.jobs.active());
    EXPECT_EQ(test.progress.back(), "0");
}

TEST(NistReadTest, StopsAfterTheSegmentInWhichItIsTold) {
    ScriptedReadTest test(500 * kGibibyte);
    test.afterRead = [&] {
        if (test.reads.size() == 9) {
            test.jobs.askToStop();
        }
    };
    EXPECT_EQ(run(test), 1U);
    EXPECT_THAT(test.reads, SizeIs(10));
    EXPECT_EQ(test.drive.nistTestResult, ReadTestResult::kTerminated);
    EXPECT_EQ(test.statuses.back(), "NIST Random Read Test User Terminated");
    EXPECT_THAT(test.progress, Contains("3"));
    EXPECT_EQ(test.progress.back(), "0");
    EXPECT_EQ(test.driveStatuses.back(), "BAD NIST Read Test TERMINATED");
}

TEST(NistReadTest, AFailureCountsMoreThanTheOrderToStop) {
    ScriptedReadTest test(500 * kGibibyte);
    test.readFails = [&](const ReadRequest&) {
        test.jobs.askToStop();
        return true;
    };
    run(test);
    EXPECT_EQ(test.drive.nistTestResult, ReadTestResult::kFailed);
    EXPECT_EQ(test.statuses.back(), "NIST Read Test -- FAILED Found Read Errors");
    EXPECT_TRUE(test.driveStatuses.back().starts_with("BAD NIST Read Test FAILED")) << test.driveStatuses.back();
}

TEST(NistReadTest, ThatWasToldToStopLeavesTheNextJobsFlag) {
    ScriptedReadTest test(500 * kGibibyte);
    std::optional<JobClaim> next;
    test.afterRead = [&] {
        if (!next) {
            test.jobs.askToStop();
            next = test.jobs.begin(JobKind::kNistTest);
        }
    };
    run(test);
    EXPECT_EQ(test.drive.nistTestResult, ReadTestResult::kTerminated);
    EXPECT_TRUE(next->isRaised());
}

TEST(NistReadTest, OfADriveTooSmallReadsNothingAndPasses) {
    for (const std::uint64_t sectors : {1001U * 20 - 1, 1001U * 3, 1001U, 1000U, 0U}) {
        ScriptedReadTest test(sectors * 512);
        EXPECT_EQ(run(test), 1U);
        EXPECT_THAT(test.reads, IsEmpty());
        EXPECT_EQ(test.drive.nistTestResult, ReadTestResult::kPassed);
        EXPECT_EQ(test.statuses.back(), "NIST Read Test -- PASSED");
    }
}

TEST(NistReadTest, OfTheSmallestDriveWithRunsReadsOneSectorTwicePerSegment) {
    ScriptedReadTest test(std::uint64_t{1001} * 20 * 512);
    run(test);
    EXPECT_THAT(test.reads, SizeIs(2000));
    EXPECT_THAT(test.reads, ::testing::Each(::testing::Field(&ReadRequest::length, 512U)));
}

} // namespace
} // namespace torvane
