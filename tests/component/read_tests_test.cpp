#include "scan/scan_job.h"
#include "state/still_at_work.h"
#include "tests/component/import_patched.h"
#include "tests/component/read_test_bench.h"
#include "tests/unit/surface_scripted_system.h"

#include <optional>

namespace torvane {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::ImportPatched;
using ::testing::IsEmpty;
using testing::LoggedRead;
using ::testing::SizeIs;

constexpr std::uint64_t kBlock = 0x2000000;
constexpr std::uint64_t kGibibyte = 0x40000000;
constexpr const char* kLargeSectors = R"(, "sectorSize": 4096)";

using ReadTests = testing::ReadTestBench;

std::string faults(const std::string& json) {
    return R"(, "faults": )" + json;
}

// --- Short ---

std::vector<LoggedRead> evenProbes(std::uint64_t sectors, std::uint64_t sectorSize) {
    std::vector<LoggedRead> probes;
    for (std::uint64_t i = 0; i < 100; ++i) {
        probes.push_back({i * (sectors / 100) * sectorSize, 65536});
    }
    return probes;
}

TEST_F(ReadTests, ShortReadsAHundredProbes) {
    DriveRecord& drive = openDrive("50 GiB");
    EXPECT_EQ(run(kShortReadTest), 1U);
    EXPECT_EQ(reads(), evenProbes(104857600, 512));
    EXPECT_EQ(drive.shortTestResult, ReadTestResult::kPassed);
    EXPECT_EQ(display_->lastStatus(), "Short Read Test -- PASSED");
    EXPECT_EQ(driveStatus(), "COMPLETED Short Read Test PASSED");
    EXPECT_THAT(view_.wideProgress(), SizeIs(100));
    EXPECT_EQ(view_.wideProgress().back(), 99);
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_FALSE(state().jobs.active());
}

TEST_F(ReadTests, ShortOfLargeSectorsReadsWholeSectors) {
    openDrive("50 GiB", kLargeSectors);
    run(kShortReadTest);
    EXPECT_EQ(reads(), evenProbes(13107200, 4096));
}

TEST_F(ReadTests, ShortReadsTheSectorsThatTheDriveLogged) {
    DriveRecord& drive = openDrive("50 GiB");
    drive.uncLbaCount = 3;
    drive.uncLbas = {90000000, 12, 104857472};
    run(kShortReadTest);
    EXPECT_THAT(reads(), ElementsAre(LoggedRead{90000000ULL * 512, 65536}, LoggedRead{12 * 512, 65536},
                                     LoggedRead{104857472ULL * 512, 65536}));
    EXPECT_EQ(drive.shortTestResult, ReadTestResult::kPassed);
    EXPECT_EQ(drive.readTimes.readDurationCount, 0);
    EXPECT_THAT(view_.wideProgress(), IsEmpty());
}

TEST_F(ReadTests, ShortStopsAtABadSector) {
    DriveRecord& drive = openDrive("50 GiB", faults(R"({"reads": [{"firstSector": 3145800}]})"));
    EXPECT_EQ(run(kShortReadTest), 1U);
    EXPECT_THAT(reads(), SizeIs(4));
    EXPECT_EQ(drive.shortTestResult, ReadTestResult::kFailed);
    EXPECT_THAT(display_->statuses(), ElementsAre("Short Read Test STARTED", "Short Test: Read FAILED at Sector [0]",
                                                  "Short Read Test -- FAILED Found Read Errors"));
    EXPECT_THAT(events(), ElementsAre("ERROR: BAD READ BLOCK AT SECTOR: [3145728] for <65536> bytes"));
    EXPECT_EQ(driveStatus(), "BAD Short Read Test FAILED at sector 3145728");
}

TEST_F(ReadTests, ShortTakesAShortReadForAFailure) {
    DriveRecord& drive = openDrive("50 GiB", faults(R"({"shortReads": [{"firstSector": 0, "bytes": 65024}]})"));
    run(kShortReadTest);
    EXPECT_THAT(reads(), SizeIs(1));
    EXPECT_EQ(drive.shortTestResult, ReadTestResult::kFailed);
}

TEST_F(ReadTests, ShortFailsSilentlyWhereTheDriveCannotBePositioned) {
    DriveRecord& drive = openDrive("50 GiB", faults(R"({"seeks": [{"firstSector": 1048576}]})"));
    run(kShortReadTest);
    EXPECT_THAT(reads(), SizeIs(1));
    EXPECT_EQ(drive.shortTestResult, ReadTestResult::kFailed);
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(ReadTests, ShortTimesSlowSectors) {
    DriveRecord& drive = openDrive("50 GiB", faults(R"({"slow": [{"firstSector": 7340032, "milliseconds": 150}]})"));
    run(kShortReadTest);
    EXPECT_EQ(drive.readTimes.readDurationCount, 100);
    EXPECT_GE(drive.readTimes.readDurationMax, 140);
    EXPECT_LT(drive.readTimes.readDurationMin, 140);
    EXPECT_GE(drive.readTimes.readDurationTotal, 140);
    EXPECT_EQ(drive.readTimes.readDurationAverage, drive.readTimes.readDurationTotal / 100);
}

// --- Critical ---

TEST_F(ReadTests, CriticalReadsBothEndsBlockByBlock) {
    DriveRecord& drive = openDrive("30 GiB");
    EXPECT_EQ(run(kCriticalReadTest), 1U);
    std::vector<LoggedRead> expected;
    for (std::uint64_t k = 0; k < 160; ++k) {
        expected.push_back({k * kBlock, kBlock});
    }
    for (std::uint64_t k = 0; k < 32; ++k) {
        expected.push_back({29 * kGibibyte + k * kBlock, kBlock});
    }
    EXPECT_EQ(reads(), expected);
    EXPECT_EQ(drive.criticalTestResult, ReadTestResult::kPassed);
    EXPECT_EQ(display_->lastStatus(), "PASSED Critical Read Test");
    EXPECT_FALSE(state().jobs.active());
    EXPECT_EQ(driveStatus(), "COMPLETED Critical Read Test PASSED");
}

TEST_F(ReadTests, CriticalOfFourGibibytesFailsPastTheEnd) {
    DriveRecord& drive = openDrive("4 GiB");
    EXPECT_EQ(run(kCriticalReadTest), 1U);
    ASSERT_THAT(reads(), SizeIs(129));
    EXPECT_EQ(reads().back(), (LoggedRead{4 * kGibibyte, kBlock}));
    EXPECT_THAT(bench_.log("target=drive:1 request=read").back(), HasSubstr("result=ERROR_SECTOR_NOT_FOUND"));
    EXPECT_EQ(drive.criticalTestResult, ReadTestResult::kFailed);
    EXPECT_EQ(display_->lastStatus(), "Phase 1 Critical Read Test FAILED");
    EXPECT_EQ(driveStatus(), "BAD Critical Read Test FAILED at sector 8388608");
    EXPECT_FALSE(state().jobs.active());
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(ReadTests, CriticalFailsInItsSecondPhase) {
    DriveRecord& drive = openDrive("30 GiB", faults(R"({"shortReads": [{"firstSector": 62914559, "bytes": 512}]})"));
    run(kCriticalReadTest);
    EXPECT_THAT(reads(), SizeIs(192)) << "the last sector is in the last block";
    EXPECT_EQ(drive.criticalTestResult, ReadTestResult::kFailed);
    EXPECT_EQ(display_->lastStatus(), "Phase 2 Critical Read Test FAILED");
    EXPECT_EQ(driveStatus(), "BAD Critical Read Test FAILED at sector 62849024");
}

TEST_F(ReadTests, CriticalPassesAPhaseWhoseStartCannotBeReached) {
    DriveRecord& drive = openDrive("30 GiB", faults(R"({"seeks": [{"firstSector": 0}]})"));
    run(kCriticalReadTest);
    ASSERT_THAT(reads(), SizeIs(32));
    EXPECT_EQ(reads().front(), (LoggedRead{29 * kGibibyte, kBlock}));
    EXPECT_EQ(drive.criticalTestResult, ReadTestResult::kPassed);
}

/// A read of the test's drive that does not end before the bench is told to hurry; the order to stop comes meanwhile.
class StoppedReadTests : public testing::ReadTestBench {
  protected:
    ~StoppedReadTests() override { bench_.hurry(); }

    /// Reads that touch the sectors are held.
    DriveRecord& openHeld(const std::string& size, int firstSector, int sectors = 1) {
        return openDrive(size, faults(R"({"slow": [{"firstSector": )" + std::to_string(firstSector) +
                                      R"(, "sectors": )" + std::to_string(sectors) + R"(, "milliseconds": )" +
                                      testing::kUntilToldToHurry + "}]}"));
    }
    /// The Critical test is held in its sixth block.
    DriveRecord& openHeldInSixthBlock() { return openHeld("30 GiB", 327680); }
    void awaitHeldRead() { ASSERT_TRUE(bench_.awaitLog("target=drive:1 request=wait")); }
    DWORD hurryAndAwaitEnd(const UniqueHandle& thread) {
        bench_.hurry();
        return awaitEnd(thread);
    }
};

TEST_F(StoppedReadTests, CriticalEndsAfterTheBlockInFlight) {
    DriveRecord& drive = openHeldInSixthBlock();
    const UniqueHandle thread = start(kCriticalReadTest);
    EXPECT_TRUE(state().jobs.active());
    EXPECT_EQ(state().jobs.atWork(), JobKinds{JobKind::kCriticalTest});
    awaitHeldRead();
    state().jobs.askToStop();
    EXPECT_FALSE(state().jobs.active());
    EXPECT_EQ(state().jobs.atWork(), JobKinds{JobKind::kCriticalTest});
    EXPECT_EQ(hurryAndAwaitEnd(thread), 1U);
    EXPECT_TRUE(state().jobs.atWork().empty());
    EXPECT_THAT(reads(), SizeIs(6));
    EXPECT_EQ(drive.criticalTestResult, ReadTestResult::kTerminated);
    EXPECT_EQ(display_->lastStatus(), "Phase 1 Critical Read Test User Terminated");
    EXPECT_EQ(driveStatus(), "BAD Critical Read Test TERMINATED");
}

TEST_F(StoppedReadTests, ALoadOfDrivesWaitsForTheReadInFlight) {
    DriveRecord& drive = openHeldInSixthBlock();
    const UniqueHandle thread = start(kCriticalReadTest);
    awaitHeldRead();
    state().jobs.askToStop();
    // The records must stay: the run still uses one.
    user_.expectStop("***** Working *****", stillAtWorkText({.kinds = {JobKind::kCriticalTest}}));
    LoadDrives(state());
    EXPECT_EQ(state().jobs.atWork(), JobKinds{JobKind::kCriticalTest});
    EXPECT_FALSE(state().jobs.active());
    hurryAndAwaitEnd(thread);
    EXPECT_EQ(drive.criticalTestResult, ReadTestResult::kTerminated);
}

TEST_F(StoppedReadTests, AnotherJobsFlagDoesNotReviveARunAndIsNotCleared) {
    DriveRecord& drive = openHeldInSixthBlock();
    const UniqueHandle thread = start(kCriticalReadTest);
    awaitHeldRead();
    state().jobs.askToStop();
    const std::optional<JobClaim> next = state().jobs.begin(JobKind::kNistTest);
    hurryAndAwaitEnd(thread);
    EXPECT_THAT(reads(), SizeIs(6));
    EXPECT_EQ(drive.criticalTestResult, ReadTestResult::kTerminated);
    EXPECT_TRUE(next->isRaised());
}

TEST_F(StoppedReadTests, TheDialogMayGoFirst) {
    openHeldInSixthBlock();
    const std::weak_ptr<ReadTestDisplay> display = display_;
    const UniqueHandle thread = start(kCriticalReadTest);
    awaitHeldRead();
    state().jobs.askToStop();
    display_.reset();
    EXPECT_FALSE(display.expired()) << "the run still shows its progress there";
    hurryAndAwaitEnd(thread);
    EXPECT_TRUE(display.expired());
}

TEST_F(StoppedReadTests, StartedTwiceBothRun) {
    DriveRecord& drive = openHeld("30 GiB", 0);
    const UniqueHandle first = start(kShortReadTest);
    const UniqueHandle second = start(kShortReadTest);
    EXPECT_EQ(state().jobs.atWork(), JobKinds{JobKind::kShortTest});
    EXPECT_EQ(hurryAndAwaitEnd(first), 1U);
    EXPECT_EQ(awaitEnd(second), 1U);
    EXPECT_TRUE(state().jobs.atWork().empty());
    EXPECT_THAT(reads(), SizeIs(200));
    EXPECT_EQ(drive.shortTestResult, ReadTestResult::kPassed);
}

TEST_F(StoppedReadTests, OfTwoCriticalTestsTheFirstToEndEndsTheOther) {
    DriveRecord& drive = openHeldInSixthBlock();
    const UniqueHandle thread = start(kCriticalReadTest);
    awaitHeldRead();
    {
        std::optional<JobClaim> other = state().jobs.begin(JobKind::kCriticalTest);
        other->lower();
    }
    EXPECT_FALSE(state().jobs.active());
    hurryAndAwaitEnd(thread);
    EXPECT_THAT(reads(), SizeIs(6));
    EXPECT_EQ(drive.criticalTestResult, ReadTestResult::kTerminated);
}

TEST_F(StoppedReadTests, ShortPaysNoHeed) {
    DriveRecord& drive = openHeld("30 GiB", 0);
    const UniqueHandle thread = start(kShortReadTest);
    EXPECT_FALSE(state().jobs.active());
    awaitHeldRead();
    state().jobs.askToStop();
    EXPECT_EQ(drive.shortTestResult, ReadTestResult::kPassed) << "a test that runs reads as passed";
    hurryAndAwaitEnd(thread);
    EXPECT_THAT(reads(), SizeIs(100));
    EXPECT_EQ(drive.shortTestResult, ReadTestResult::kPassed);
}

TEST_F(StoppedReadTests, ALoadOfDrivesSaysThatTheShortTestRuns) {
    openHeld("30 GiB", 0);
    const UniqueHandle thread = start(kShortReadTest);
    user_.expectStop("***** Load Drives *****", "Short Test is Running");
    LoadDrives(state());
    EXPECT_EQ(state().jobs.atWork(), JobKinds{JobKind::kShortTest});
    hurryAndAwaitEnd(thread);
}

TEST_F(StoppedReadTests, ACopyThatIsStillEndingIsNotMadeToGoOn) {
    DriveRecord& drive = openDrive("30 GiB");
    const std::optional<JobClaim> copy = state().jobs.begin(JobKind::kClone);
    state().jobs.askToStop(); // its last read is in flight
    for (const ReadTestKind kind : {kCriticalReadTest, kNistReadTest}) {
        user_.expectStop("***** Working *****", stillAtWorkText({.kinds = {JobKind::kClone}}));
        EXPECT_FALSE(startReadTest(state(), kind, drive, display_));
        EXPECT_FALSE(state().jobs.active());
        EXPECT_EQ(state().jobs.atWork(), JobKinds{JobKind::kClone});
        EXPECT_EQ(display_->lastStatus(), "Status: The last job on a drive has not ended yet");
    }
    EXPECT_THAT(events(), SizeIs(2));
    // The Short test has nothing to do with the flag.
    run(kShortReadTest);
    EXPECT_EQ(drive.shortTestResult, ReadTestResult::kPassed);
}

TEST_F(ReadTests, DoNotBeginOnADriveThatAnotherTorvaneUses) {
    DriveRecord& drive = openDrive("1 GiB");
    const UniqueHandle other{CreateMutexW(nullptr, FALSE, L"Global\\Torvane.PhysicalDrive1")};
    for (const ReadTestKind kind : {kShortReadTest, kCriticalReadTest, kNistReadTest}) {
        user_.expectStop(
            "***** DRIVE IN USE *****",
            "Drive 1 - Under Test U1 is used by another Torvane on this computer.\n\nNothing was started, and "
            "nothing was done to the drive. Wait for the end of the job there, or terminate it, and try "
            "again.");
        EXPECT_FALSE(startReadTest(state(), kind, drive, display_));
        EXPECT_EQ(display_->lastStatus(), "Status: Another Torvane uses this drive");
        EXPECT_FALSE(state().jobs.active());
    }
    EXPECT_THAT(reads(), IsEmpty());
}

TEST_F(StoppedReadTests, WithoutRoomForAThreadNothingStaysRaised) {
    openDrive("30 GiB");
    const ImportPatched patched(
        __imp_CreateThread,
        +[](LPSECURITY_ATTRIBUTES, SIZE_T, LPTHREAD_START_ROUTINE, LPVOID, DWORD, LPDWORD) -> HANDLE {
            return nullptr;
        });
    for (const ReadTestKind kind : {kShortReadTest, kCriticalReadTest, kNistReadTest}) {
        EXPECT_FALSE(startReadTest(state(), kind, *record_, display_));
        EXPECT_FALSE(state().jobs.active());
        EXPECT_TRUE(state().jobs.atWork().empty());
    }
    EXPECT_THAT(events(), Each("ERROR: Could not start the read test"));
    EXPECT_THAT(events(), SizeIs(3));
    EXPECT_EQ(record_->nistTestResult, ReadTestResult::kNotPerformed);
}

// --- NIST ---

/// Every read of a NIST test on a drive whose runs are shorter than a block, as the C runtime's generator places them.
std::vector<LoggedRead> nistReads(std::uint64_t sectors, std::uint64_t sectorSize) {
    const std::uint64_t segment = sectors / 1001;
    const std::uint64_t runSectors = segment / 20;
    testing::RuntimeNumbers numbers;
    std::vector<LoggedRead> expected;
    for (std::uint64_t i = 0; i < 1000; ++i) {
        const TwoStarts starts = PickTwoStarts({static_cast<std::int64_t>(i * segment), segment}, runSectors,
                                               [&] { return numbers.next(); });
        for (const std::int64_t start : {starts.first, starts.second}) {
            expected.push_back({static_cast<std::uint64_t>(start) * sectorSize, runSectors * sectorSize});
        }
    }
    return expected;
}

TEST_F(ReadTests, NistReadsTwoRunsOfEachSegmentAndTheSameAgain) {
    DriveRecord& drive = openDrive("20 GiB");
    EXPECT_EQ(run(kNistReadTest), 1U);
    const std::vector<LoggedRead> first = reads();
    EXPECT_EQ(first, nistReads(41943040, 512));
    EXPECT_EQ(drive.nistTestResult, ReadTestResult::kPassed);
    EXPECT_EQ(display_->lastStatus(), "NIST Read Test -- PASSED");
    EXPECT_FALSE(state().jobs.active());
    EXPECT_EQ(driveStatus(), "COMPLETED NIST Read Test PASSED");
    EXPECT_THAT(events(), IsEmpty());

    run(kNistReadTest);
    const std::vector<LoggedRead> both = reads();
    ASSERT_EQ(both.size(), 2 * first.size());
    EXPECT_EQ(std::vector<LoggedRead>(both.begin() + static_cast<std::ptrdiff_t>(first.size()), both.end()), first);
}

TEST_F(ReadTests, NistOfAKnownDriveVisitsTheseSectors) {
    // A bad stretch from segment 10 on, so that the first twenty reads are all.
    DriveRecord& drive = openDrive("500 GiB", faults(R"({"reads": [{"firstSector": 10475280, "sectors": 1047528}]})"));
    for (int i = 0; i < 2; ++i) {
        run(kNistReadTest);
        EXPECT_EQ(drive.nistTestResult, ReadTestResult::kFailed);
        EXPECT_EQ(display_->lastStatus(), "NIST Read Test -- FAILED Found Read Errors");
        const auto statuses = display_->statuses();
        EXPECT_EQ(statuses[statuses.size() - 2], "NIST Read FAILED at Sector [10475280]");
    }
    std::vector<std::uint64_t> sectors;
    for (const LoggedRead& read : reads()) {
        sectors.push_back(read.offset / 512);
        EXPECT_EQ(read.length, 52376U * 512);
    }
    const std::vector<std::uint64_t> once = {280417,  402399,  1286298, 1493326, 2466543, 2522433, 3398104,
                                             3150042, 4371449, 4272657, 5459406, 5239964, 6473186, 6569371,
                                             7634802, 7662602, 8555429, 8682584, 9827103, 9577994};
    ASSERT_THAT(sectors, SizeIs(42));
    EXPECT_EQ(std::vector<std::uint64_t>(sectors.begin(), sectors.begin() + 20), once);
    EXPECT_EQ(std::vector<std::uint64_t>(sectors.begin() + 21, sectors.begin() + 41), once);
    EXPECT_EQ(sectors[20], sectors[41]);
}

TEST_F(ReadTests, NistOfALargeDriveReadsWholeBlocksAndARest) {
    // Segments of 4196352 sectors: runs of 209817 are three blocks and 13209 sectors.
    openDrive("2 TiB", faults(R"({"reads": [{"firstSector": 4290676, "sectors": 4290676}]})"));
    run(kNistReadTest);
    const auto all = reads();
    ASSERT_THAT(all, SizeIs(9));
    const std::uint64_t segment = 4294967296 / 1001;
    const std::uint64_t runSectors = segment / 20;
    testing::RuntimeNumbers numbers;
    const TwoStarts starts = PickTwoStarts({0, segment}, runSectors, [&] { return numbers.next(); });
    std::size_t next = 0;
    for (const std::int64_t start : {starts.first, starts.second}) {
        for (std::uint64_t block = 0; block < 3; ++block) {
            EXPECT_EQ(all[next++], (LoggedRead{(static_cast<std::uint64_t>(start) + block * 65536) * 512, kBlock}));
        }
        EXPECT_EQ(all[next++],
                  (LoggedRead{(static_cast<std::uint64_t>(start) + 3 * 65536) * 512, (runSectors - 3 * 65536) * 512}));
    }
}

TEST_F(ReadTests, NistOfLargeSectorsReadsARestLongerThanABlockInOne) {
    // Runs of 13094 sectors of 4096 bytes: 53633024 bytes, more than a block.
    DriveRecord& drive = openDrive(
        "1000 GiB", std::string(kLargeSectors) + faults(R"({"reads": [{"firstSector": 261881, "sectors": 261881}]})"));
    run(kNistReadTest);
    const auto all = reads();
    ASSERT_THAT(all, SizeIs(3));
    EXPECT_THAT(all, Each(::testing::Field(&LoggedRead::length, 13094U * 4096)));
    EXPECT_EQ(drive.nistTestResult, ReadTestResult::kFailed);
    EXPECT_THAT(events().back(), HasSubstr("for <53633024> bytes"));
}

TEST_F(ReadTests, NistOfADriveTooSmallReadsNothingAndPasses) {
    DriveRecord& drive = openDrive("9 MiB");
    EXPECT_EQ(run(kNistReadTest), 1U);
    EXPECT_THAT(reads(), IsEmpty());
    EXPECT_EQ(drive.nistTestResult, ReadTestResult::kPassed);
    EXPECT_EQ(display_->lastStatus(), "NIST Read Test -- PASSED");
}

TEST_F(ReadTests, NistFailsWhenTheDriveStopsAnswering) {
    DriveRecord& drive =
        openDrive("20 GiB", faults(R"({"stopsAnswering": {"afterRequests": 41, "milliseconds": 400}})"));
    run(kNistReadTest);
    EXPECT_THAT(reads(), SizeIs(42));
    EXPECT_EQ(drive.nistTestResult, ReadTestResult::kFailed);
    EXPECT_GE(drive.readTimes.lastReadMs, 380);
    EXPECT_EQ(display_->lastStatus(), "NIST Read Test -- FAILED Found Read Errors");
    EXPECT_THAT(driveStatus(), HasSubstr("BAD NIST Read Test FAILED at sector "));
    EXPECT_THAT(events(), SizeIs(1));
}

TEST_F(ReadTests, NistFailsWhenTheDriveVanishes) {
    DriveRecord& drive = openDrive("20 GiB", faults(R"({"vanishAfterRequests": 10})"));
    run(kNistReadTest);
    EXPECT_EQ(drive.nistTestResult, ReadTestResult::kFailed);
    EXPECT_EQ(display_->lastStatus(), "NIST Read Test -- FAILED Found Read Errors");
}

TEST_F(StoppedReadTests, NistEndsAfterTheSegmentInFlight) {
    DriveRecord& drive = openHeld("20 GiB", 125703, 41901);
    const UniqueHandle thread = start(kNistReadTest);
    awaitHeldRead(); // segment 3 has begun
    state().jobs.askToStop();
    EXPECT_EQ(hurryAndAwaitEnd(thread), 1U);
    EXPECT_THAT(reads(), SizeIs(8)) << "both runs of the segment are read";
    EXPECT_EQ(drive.nistTestResult, ReadTestResult::kTerminated);
    EXPECT_EQ(display_->lastStatus(), "NIST Random Read Test User Terminated");
    EXPECT_FALSE(state().jobs.active());
}

} // namespace
} // namespace torvane
