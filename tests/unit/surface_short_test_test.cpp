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

constexpr std::uint64_t kMebibyte = 1048576;

std::uint32_t run(ScriptedReadTest& test) {
    return test.run(kShortReadTest, runShortTest);
}

void logSectors(ScriptedReadTest& test, const std::vector<std::int64_t>& sectors) {
    test.drive.uncLbaCount = static_cast<std::int32_t>(sectors.size());
    std::copy(sectors.begin(), sectors.end(), test.drive.uncLbas.begin());
}

std::vector<ReadRequest> evenProbes(std::uint64_t sectors, std::uint64_t sectorSize) {
    std::vector<ReadRequest> probes;
    probes.reserve(100);
    for (std::uint64_t i = 0; i < 100; ++i) {
        probes.push_back({i * (sectors / 100) * sectorSize, 65536});
    }
    return probes;
}

TEST(ShortReadTest, ProbesAHundredPlacesSpreadEvenly) {
    ScriptedReadTest test(1000 * kMebibyte + 512);
    EXPECT_EQ(run(test), 1U);
    EXPECT_EQ(test.reads, evenProbes(2048001, 512));
    EXPECT_EQ(test.drive.shortTestResult, ReadTestResult::kPassed);
    EXPECT_THAT(test.statuses, ElementsAre("Short Read Test STARTED", "Short Read Test -- PASSED"));
    EXPECT_THAT(test.logRows, IsEmpty());
    EXPECT_EQ(test.driveStatuses.back(), "COMPLETED Short Read Test PASSED");
}

TEST(ShortReadTest, CountsInTheDrivesOwnSectors) {
    ScriptedReadTest test(1000 * kMebibyte, 4096);
    run(test);
    EXPECT_EQ(test.reads, evenProbes(256000, 4096));
}

TEST(ShortReadTest, TakesAnUntoldSectorSizeForTheUsualOne) {
    ScriptedReadTest test(1000 * kMebibyte, 0);
    run(test);
    EXPECT_EQ(test.reads, evenProbes(2048000, 512));
}

TEST(ShortReadTest, MovesTheMainWindowsBarAndOnlyResetsTheDialogs) {
    ScriptedReadTest test(1000 * kMebibyte);
    run(test);
    ASSERT_THAT(test.wideProgress, SizeIs(100));
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(test.wideProgress[static_cast<std::size_t>(i)], i);
    }
    EXPECT_THAT(test.progress, ElementsAre("0..100", "0"));
}

TEST(ShortReadTest, ReadsExactlyTheLoggedSectorsInTheLogsOrder) {
    ScriptedReadTest test(1000 * kMebibyte);
    logSectors(test, {70000, 5, 1234567});
    EXPECT_EQ(run(test), 1U);
    EXPECT_THAT(test.reads, ElementsAre(ReadRequest{70000 * 512, 65536}, ReadRequest{5 * 512, 65536},
                                        ReadRequest{std::uint64_t{1234567} * 512, 65536}));
    EXPECT_EQ(test.drive.shortTestResult, ReadTestResult::kPassed);
    EXPECT_THAT(test.statuses, ElementsAre("Short Read Test STARTED", "Short Read Test -- PASSED"));
}

TEST(ShortReadTest, OfLoggedSectorsRecordsNeitherTimesNorProgress) {
    ScriptedReadTest test(1000 * kMebibyte);
    test.drive.readTimes.readDurationCount = 7;
    test.drive.readTimes.readDurationTotal = 70;
    logSectors(test, {70000, 5});
    run(test);
    EXPECT_EQ(test.drive.readTimes.readDurationCount, 0);
    EXPECT_EQ(test.drive.readTimes.readDurationTotal, 0);
    EXPECT_EQ(test.drive.readTimes.readDurationAverage, 0);
    EXPECT_EQ(test.drive.readTimes.readDurationMin, 0);
    EXPECT_EQ(test.drive.readTimes.readDurationMax, 0);
    EXPECT_EQ(test.drive.readTimes.lastReadMs, 3);
    EXPECT_THAT(test.wideProgress, IsEmpty());
    EXPECT_THAT(test.progress, ElementsAre("0..100", "0"));
    EXPECT_THAT(test.driveStatuses, ElementsAre("Short Read Test 0%", "COMPLETED Short Read Test PASSED"));
}

TEST(ShortReadTest, NamesTheLoggedSectorThatFailedAndStopsThere) {
    ScriptedReadTest test(1000 * kMebibyte);
    logSectors(test, {70000, 5, 1234567});
    test.readFails = [](const ReadRequest& read) { return read.offset == 5 * 512; };
    EXPECT_EQ(run(test), 1U);
    EXPECT_THAT(test.reads, SizeIs(2));
    EXPECT_EQ(test.drive.shortTestResult, ReadTestResult::kFailed);
    EXPECT_THAT(test.statuses, ElementsAre("Short Read Test STARTED", "Short Test: Read FAILED at Sector [5]",
                                           "Short Read Test -- FAILED Found Read Errors"));
    EXPECT_THAT(test.logRows, ElementsAre("ERROR: BAD READ BLOCK AT SECTOR: [5] for <65536> bytes"));
    EXPECT_EQ(test.driveStatuses.back(), "BAD Short Read Test FAILED at sector 5");
}

TEST(ShortReadTest, ALoggedSectorOutsideTheDriveFails) {
    ScriptedReadTest test(1000 * kMebibyte);
    logSectors(test, {-1});
    test.seekFails = [](std::uint64_t offset) { return offset > (1ULL << 63); };
    run(test);
    EXPECT_THAT(test.seeks, ElementsAre(static_cast<std::uint64_t>(-512)));
    EXPECT_EQ(test.drive.shortTestResult, ReadTestResult::kFailed);
    EXPECT_EQ(test.statuses[1], "Short Test: Read FAILED at Sector [-1]");
}

TEST(ShortReadTest, BelievesNoMoreLoggedSectorsThanTheListHolds) {
    ScriptedReadTest test(1000 * kMebibyte);
    test.drive.uncLbaCount = 5000;
    run(test);
    EXPECT_THAT(test.reads, SizeIs(50));
}

TEST(ShortReadTest, OnTheSamplingPathPrintsSectorZeroWhateverFailed) {
    for (const std::uint64_t probe : {0U, 1U, 49U, 50U, 99U}) {
        ScriptedReadTest test(1000 * kMebibyte);
        const std::uint64_t sector = probe * 20480;
        test.readFails = [&](const ReadRequest& read) { return read.offset == sector * 512; };
        EXPECT_EQ(run(test), 1U);
        EXPECT_THAT(test.reads, SizeIs(probe + 1));
        EXPECT_EQ(test.drive.shortTestResult, ReadTestResult::kFailed);
        EXPECT_THAT(test.statuses, ElementsAre("Short Read Test STARTED", "Short Test: Read FAILED at Sector [0]",
                                               "Short Read Test -- FAILED Found Read Errors"));
        // The event log and the drive list tell which sector it was.
        EXPECT_THAT(test.logRows,
                    ElementsAre("ERROR: BAD READ BLOCK AT SECTOR: [" + std::to_string(sector) + "] for <65536> bytes"));
        EXPECT_EQ(test.driveStatuses.back(), "BAD Short Read Test FAILED at sector " + std::to_string(sector));
        EXPECT_THAT(test.wideProgress, SizeIs(probe));
        EXPECT_THAT(test.progress, ElementsAre("0..100", "0"));
    }
}

TEST(ShortReadTest, AFailedSeekFailsTheTestWithoutALogRow) {
    ScriptedReadTest test(1000 * kMebibyte);
    test.seekFails = [](std::uint64_t offset) { return offset > 0; };
    run(test);
    EXPECT_THAT(test.reads, SizeIs(1));
    EXPECT_EQ(test.drive.shortTestResult, ReadTestResult::kFailed);
    EXPECT_THAT(test.logRows, IsEmpty());
    EXPECT_EQ(test.statuses.back(), "Short Read Test -- FAILED Found Read Errors");
}

TEST(ShortReadTest, OfATinyDriveFailsAtItsEnd) {
    // 100 places 127 sectors apart: the last probe, of 128 sectors, reaches past the end.
    ScriptedReadTest test(std::uint64_t{12700} * 512);
    run(test);
    EXPECT_THAT(test.reads, SizeIs(100));
    EXPECT_EQ(test.drive.shortTestResult, ReadTestResult::kFailed);
}

TEST(ShortReadTest, ReadsAsPassedWhileItRuns) {
    ScriptedReadTest test(1000 * kMebibyte);
    std::vector<ReadTestResult> results;
    test.afterRead = [&] { results.push_back(test.drive.shortTestResult); };
    run(test);
    EXPECT_THAT(results, ::testing::Each(ReadTestResult::kPassed));
    EXPECT_EQ(test.drive.criticalTestResult, ReadTestResult::kNotPerformed);
    EXPECT_EQ(test.drive.nistTestResult, ReadTestResult::kNotPerformed);
}

TEST(ShortReadTest, CannotBeStoppedAndHasNoFlag) {
    ScriptedReadTest test(1000 * kMebibyte);
    test.afterRead = [&] {
        EXPECT_FALSE(test.jobs.active());
        test.jobs.askToStop();
    };
    run(test);
    EXPECT_THAT(test.reads, SizeIs(100));
    EXPECT_EQ(test.drive.shortTestResult, ReadTestResult::kPassed);
}

TEST(ShortReadTest, LeavesAnotherJobsFlagAlone) {
    ScriptedReadTest test(1000 * kMebibyte);
    const std::optional<JobClaim> other = test.jobs.begin(JobKind::kCriticalTest);
    run(test);
    EXPECT_TRUE(other->isRaised());
}

TEST(ShortReadTest, KeepsAverageLeastAndGreatestTime) {
    ScriptedReadTest test(1000 * kMebibyte);
    std::uint32_t next = 10;
    test.readTakes = [&] { return next++; }; // 10 to 109
    run(test);
    const ReadTestTimes& times = test.drive.readTimes;
    EXPECT_EQ(times.readDurationCount, 100);
    EXPECT_EQ(times.readDurationTotal, 5950);
    EXPECT_EQ(times.readDurationAverage, 59);
    EXPECT_EQ(times.readDurationMin, 10);
    EXPECT_EQ(times.readDurationMax, 109);
    EXPECT_EQ(times.lastReadMs, 109);
    EXPECT_EQ(times.lastReadEnd - times.lastReadStart, 109);
    EXPECT_EQ(test.fineClock, 0) << "the clock was left fine";
}

TEST(ShortReadTest, CountsProbesThatNeverRanAsNoTime) {
    ScriptedReadTest test(1000 * kMebibyte);
    test.readTakes = [] { return 50U; };
    test.readFails = [](const ReadRequest& read) { return read.offset == 10 * 20480 * 512; };
    run(test);
    const ReadTestTimes& times = test.drive.readTimes;
    EXPECT_EQ(times.readDurationCount, 10);
    EXPECT_EQ(times.readDurationTotal, 500);
    EXPECT_EQ(times.readDurationAverage, 5);
    EXPECT_EQ(times.readDurationMin, 0);
    EXPECT_EQ(times.readDurationMax, 50);
}

TEST(ReadDurationStats, StartTheLeastAtFiveSeconds) {
    DriveRecord drive;
    drive.readTimes.readDurationTotal = -7;
    const std::vector<std::int64_t> durations = {9000, 6000};
    ComputeReadDurationStats(drive, durations, 2);
    EXPECT_EQ(drive.readTimes.readDurationAverage, -3);
    EXPECT_EQ(drive.readTimes.readDurationMin, 5000);
    EXPECT_EQ(drive.readTimes.readDurationMax, 9000);
}

TEST(TimedRead, DropsTheSignOfATimeOverWhichTheClockWrapped) {
    ScriptedReadTest test(1000 * kMebibyte);
    test.clock = 0xFFFFFFFE;
    test.readTakes = [] { return 6U; };
    ReadTestJob job = test.makeJob(kShortReadTest);
    std::vector<std::byte> bytes(512);
    EXPECT_EQ(TimedRead(job, bytes, 0), TransferOutcome::kWhole);
    EXPECT_FALSE(job.failedRead);
    EXPECT_EQ(test.drive.readTimes.lastReadStart, 0xFFFFFFFE);
    EXPECT_EQ(test.drive.readTimes.lastReadEnd, 4);
    EXPECT_EQ(test.drive.readTimes.lastReadMs, 0xFFFFFFFA);
}

TEST(TimedRead, AlsoTimesAReadThatFails) {
    ScriptedReadTest test(1000 * kMebibyte);
    test.readFails = [](const ReadRequest&) { return true; };
    test.readTakes = [] { return 8000U; };
    ReadTestJob job = test.makeJob(kNistReadTest);
    std::vector<std::byte> bytes(1024);
    EXPECT_EQ(TimedRead(job, bytes, 77), TransferOutcome::kFailed);
    EXPECT_EQ(test.drive.readTimes.lastReadMs, 8000);
    EXPECT_EQ(test.fineClock, 0);
    EXPECT_THAT(test.logRows, ElementsAre("ERROR: BAD READ BLOCK AT SECTOR: [77] for <1024> bytes"));
    ASSERT_TRUE(job.failedRead);
    EXPECT_EQ(job.failedRead->sector, 77);
    EXPECT_EQ(job.failedRead->outcome, TransferOutcome::kFailed);
}

TEST(TimedRead, KeepsThatTheDriveIsGone) {
    ScriptedReadTest test(1000 * kMebibyte);
    test.readFails = [](const ReadRequest&) { return true; };
    test.failure = TransferOutcome::kGone;
    ReadTestJob job = test.makeJob(kNistReadTest);
    std::vector<std::byte> bytes(1024);
    EXPECT_EQ(TimedRead(job, bytes, 77), TransferOutcome::kGone);
    EXPECT_EQ(job.failedRead->outcome, TransferOutcome::kGone);
    EXPECT_THAT(test.logRows, SizeIs(1));
}

TEST(TimedRead, OfAPlaceThatCannotBeReachedReadsAndTimesNothing) {
    ScriptedReadTest test(1000 * kMebibyte);
    test.seekFails = [](std::uint64_t) { return true; };
    ReadTestJob job = test.makeJob(kNistReadTest);
    std::vector<std::byte> bytes(1024);
    EXPECT_EQ(TimedRead(job, bytes, 77), TransferOutcome::kNotReached);
    EXPECT_EQ(job.failedRead->sector, 77);
    EXPECT_EQ(job.failedRead->outcome, TransferOutcome::kNotReached);
    EXPECT_THAT(test.reads, IsEmpty());
    EXPECT_EQ(test.drive.readTimes.lastReadEnd, 0);
}

} // namespace
} // namespace torvane
