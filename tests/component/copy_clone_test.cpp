#include "base/owned_handle.h"
#include "tests/component/copy_bench.h"
#include "tests/component/import_patched.h"

#include <functional>
#include <thread>

// The import slots of the functions that a test replaces. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&CreateThread) __imp_CreateThread;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::noise;
using ::testing::Not;
using ::testing::SizeIs;
using testing::unreadable;

class Clone : public testing::CopyBench {
  protected:
    /// A source of noise with the given faults (JSON), and an empty destination.
    void openDrives(std::size_t sourceBytes, std::size_t destinationBytes, const std::string& sourceFaults = "{}",
                    const std::string& destinationMore = "", int sectorSize = 512) {
        const std::string sectors = R"(, "sectorSize": )" + std::to_string(sectorSize);
        bench_.addDrive(R"({"number": 1, "bus": "nvme", "backing": {"pattern": "noise", "seed": 7}, "size": )" +
                        std::to_string(sourceBytes) + sectors + R"(, "faults": )" + sourceFaults + "}");
        bench_.addDrive(R"({"number": 2, "bus": "nvme", "identity": {"product": "Target", "serial": "T1"}, "size": )" +
                        std::to_string(destinationBytes) + sectors + destinationMore + "}");
        source_ = &drive(1);
        destination_ = &drive(2);
        order_.source = source_;
        order_.destination = destination_;
    }

    /// Whether the destination holds the source's noise in [from, to).
    static bool arrived(std::uint64_t from, std::uint64_t to) {
        const auto size = static_cast<std::size_t>(to - from);
        return content(2, from, size) == noise(7, from, size);
    }

    static std::string readFault(std::uint64_t firstSector, const std::string& more = "") {
        return R"({"firstSector": )" + std::to_string(firstSector) + more + "}";
    }

    static constexpr const char* kUsedDisk =
        R"(, "volumes": [{"letter": "K", "extents": [{"offset": 32768, "length": 131072}]},
                         {"letter": "L", "extents": [{"offset": 262144, "length": 65536}]}])";

    static constexpr const char* kRefusingDiskPart =
        R"({"tools": {"diskpart": {"output": "DiskPart has encountered an error.\r\n"}}})";

    void expectChangedDrive(const std::string& role, const std::string& untouched = "Nothing was written") {
        user_.expectStop("***** DRIVE HAS CHANGED *****",
                         "The " + role + " is not the drive that was loaded any more, or it does not answer. " +
                             untouched + ". Load the drives again");
    }
    /// A diskpart that takes until it is told to hurry. Before the drives are opened.
    void describeSlowClean() {
        bench_.describe(R"({"tools": {"diskpart": {"delayMilliseconds": )" + std::string(testing::kUntilToldToHurry) +
                        "}}}");
    }
    /// Does `act` while the destination is cleaned.
    std::uint32_t cloneWhileItIsCleaned(const std::function<void()>& act) {
        std::thread user([&] {
            EXPECT_TRUE(bench_.awaitLog("request=start"));
            act();
            bench_.hurry();
        });
        const std::uint32_t exitCode = run(runForwardClone);
        user.join();
        return exitCode;
    }
    void expectNothingWasWritten() {
        EXPECT_THAT(bench_.log("target=drive:2 request=write"), IsEmpty());
        EXPECT_EQ(display_.lastStatus(), " Status: Not started");
        EXPECT_EQ(lastDriveStatus(*source_), "BAD not started");
        EXPECT_EQ(lastDriveStatus(*destination_), "BAD not started");
        EXPECT_FALSE(state().jobs.active());
    }

    DriveRecord* source_ = nullptr;
    DriveRecord* destination_ = nullptr;
};

TEST_F(Clone, DoesNotBeginOntoADriveThatAnotherTorvaneUses) {
    openDrives(kBlock, kBlock);
    UniqueHandle other{CreateMutexW(nullptr, FALSE, L"Global\\Torvane.PhysicalDrive2")};
    user_.expectStop(
        "***** DRIVE IN USE *****",
        "Drive 2 - Target T1 is used by another Torvane on this computer.\n\nNothing was started, and nothing "
        "was done to the drive. Wait for the end of the job there, or terminate it, and try again.");
    EXPECT_FALSE(start(CopyKind::kForwardClone));
    EXPECT_TRUE(state().jobs.atWork().empty());
    EXPECT_THAT(bench_.log("target=drive:2 request=write"), IsEmpty());
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty());
    const UniqueHandle source{CreateMutexW(nullptr, FALSE, L"Global\\Torvane.PhysicalDrive1")};
    EXPECT_NE(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS)) << "the source is given back";
}

TEST_F(Clone, ForwardOntoADiskWithMountedVolumesArrivesWhole) {
    openDrives(10 * kBlock + 4096, 10 * kBlock + 4096, "{}", kUsedDisk);
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_TRUE(arrived(0, 10 * kBlock + 4096));
    EXPECT_EQ(destination_->writeErrorCount, 0U);
    EXPECT_EQ(display_.lastStatus(), " Image Completed");
    EXPECT_EQ(lastDriveStatus(*destination_), "COMPLETED");
    EXPECT_EQ(lastDriveStatus(*source_), "COMPLETED");
    EXPECT_EQ(display_.losses(), "Nothing was lost");
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(Clone, ReverseOntoADiskWithMountedVolumesArrivesWhole) {
    openDrives(10 * kBlock + 4096, 10 * kBlock + 4096, "{}", kUsedDisk);
    EXPECT_EQ(run(runReverseClone), 1U);
    EXPECT_TRUE(arrived(0, 10 * kBlock + 4096));
    EXPECT_EQ(display_.lastStatus(), " Clone SUCCESSFULLY Completed");
    EXPECT_EQ(state().raceTrack.carX, 10);
}

TEST_F(Clone, CleansTheDestinationBeforeTheFirstBlock) {
    openDrives(2 * kBlock, 10 * kBlock, "{}", kUsedDisk);
    run(runForwardClone);
    EXPECT_EQ(testing::readFile("DPCleanDiskScript.txt"), "select disk 2\nclean\n");
    const std::vector<std::string> all = bench_.log("");
    const auto firstOf = [&](const std::string& text) {
        return std::find_if(all.begin(), all.end(),
                            [&](const std::string& line) { return line.find(text) != std::string::npos; });
    };
    EXPECT_LT(firstOf("script-line=\"clean\""), firstOf("request=write"));
    EXPECT_THAT(view_.driveStatuses(*destination_), Contains("Cleaning disk"));
}

constexpr const char* kNotCleaned = "***** DESTINATION NOT CLEANED *****";
constexpr const char* kContinueAnyway =
    "The DESTINATION could not be cleaned. Still mounted on it: K:, L:. Windows refuses writes inside mounted volumes, "
    "so parts of the copy may not arrive. Nothing was written yet. Continue anyway?";

TEST_F(Clone, ACleanThatFailedStopsItBeforeTheFirstBlock) {
    bench_.describe(kRefusingDiskPart);
    openDrives(10 * kBlock, 10 * kBlock, "{}", kUsedDisk);
    user_.expectAskDefaultNo(kNotCleaned, kContinueAnyway, false);
    EXPECT_EQ(run(runForwardClone), 0U);
    EXPECT_THAT(bench_.log("target=drive:2 request=write"), IsEmpty());
    EXPECT_THAT(display_.statuses(), Contains(" Status: Cleaning the destination"));
    EXPECT_EQ(display_.lastStatus(), " Status: Not started");
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD not started");
    EXPECT_FALSE(state().jobs.active());
}

TEST_F(Clone, WithoutACleanDiskTheVolumesRefuseAndTheCountsTellIt) {
    bench_.describe(kRefusingDiskPart);
    openDrives(10 * kBlock, 10 * kBlock, "{}", kUsedDisk);
    user_.expectAskDefaultNo(kNotCleaned, kContinueAnyway, true);
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_THAT(events(), ElementsAre("ERROR: Could nore VERIFY partition CLEAR for [\\\\.\\PhysicalDrive2]"));
    // Blocks 0 to 2 and 4 touch a volume.
    EXPECT_EQ(destination_->writeErrorCount, 4U);
    EXPECT_EQ(display_.lastStatus(), " Image Completed");
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 4 failed writes");
    EXPECT_TRUE(arrived(5 * kBlock, 10 * kBlock));
}

TEST_F(Clone, WithThirtyTwoMebibyteBlocksAsTheProgramRunsIt) {
    constexpr std::size_t kMebibyte = 1048576;
    openDrives(100 * kMebibyte, 101 * kMebibyte, R"({"reads": [{"firstSector": 65537}]})",
               R"(, "volumes": [{"letter": "K", "extents": [{"offset": "1 MiB", "length": "90 MiB"}]}])");
    EXPECT_EQ(run(ForwardClone), 1U);
    EXPECT_TRUE(arrived(0, 32 * kMebibyte));
    EXPECT_EQ(content(2, 32 * kMebibyte, 32 * kMebibyte), unreadable(32 * kMebibyte));
    EXPECT_TRUE(arrived(64 * kMebibyte, 100 * kMebibyte));
    EXPECT_EQ(content(2, 100 * kMebibyte, kMebibyte), std::string(kMebibyte, '\0'));
    EXPECT_THAT(events(), ElementsAre("ERROR: BAD READ BLOCK AT SECTOR: [65536]"));
    EXPECT_THAT(display_.statuses(),
                ElementsAre(" Status: Idle", " Status: Cleaning the destination", " Status: Idle", HasSubstr(" -- %0"),
                            HasSubstr(" -- %33"), HasSubstr(" -- %66"), " Image Completed"));
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 1 unreadable block");
}

TEST_F(Clone, ASourceLargerThanTheDestinationIsCutAndWhatIsMissingIsTold) {
    openDrives(5 * kBlock, 3 * kBlock + 512);
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_TRUE(arrived(0, 3 * kBlock + 512));
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_EQ(display_.lastStatus(), " Image Completed");
    EXPECT_EQ(display_.losses(), "red: 127.5 KB of the source not copied");
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 127.5 KB of the source not copied");
    EXPECT_EQ(lastDriveStatus(*source_), "BAD 127.5 KB of the source not copied");
    EXPECT_EQ(destination_->writeErrorCount, 0U);
}

TEST_F(Clone, ReverseOfALargerSourceStartsAtTheDestinationsEnd) {
    openDrives(5 * kBlock, 3 * kBlock + 512);
    EXPECT_EQ(run(runReverseClone), 1U);
    EXPECT_TRUE(arrived(0, 3 * kBlock + 512));
    const auto writes = bench_.log("target=drive:2 request=write");
    ASSERT_THAT(writes, SizeIs(4));
    EXPECT_THAT(writes[0], HasSubstr("offset=" + std::to_string(2 * kBlock + 512) + " length=65536"));
    EXPECT_THAT(writes[3], HasSubstr("offset=0 length=512"));
}

TEST_F(Clone, ASmallerSourceLeavesTheRestOfTheDestination) {
    openDrives(2 * kBlock + 512, 5 * kBlock);
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_TRUE(arrived(0, 2 * kBlock + 512));
    EXPECT_EQ(content(2, 2 * kBlock + 512, 2 * kBlock), std::string(2 * kBlock, '\0'));
}

TEST_F(Clone, OfOneSectorIsARemainderAlone) {
    openDrives(512, 512);
    EXPECT_EQ(run(ForwardClone), 1U);
    EXPECT_TRUE(arrived(0, 512));
    EXPECT_THAT(display_.statuses(),
                ElementsAre(" Status: Idle", " Status: Cleaning the destination", " Status: Idle", " Image Completed"));
    EXPECT_EQ(state().raceTrack.succeeded, 1);
    EXPECT_EQ(state().raceTrack.carX, 760);
}

TEST_F(Clone, OfNothingCompletesAtOnce) {
    openDrives(512, 512);
    source_->sizeBytes = 0;
    EXPECT_EQ(run(ReverseClone), 1U);
    EXPECT_THAT(bench_.log("target=drive:1 request=read"), IsEmpty());
    EXPECT_EQ(display_.lastStatus(), " Clone SUCCESSFULLY Completed");
}

TEST_F(Clone, OfAnExactMultipleHasNoRemainder) {
    openDrives(3 * kBlock, 3 * kBlock);
    run(runForwardClone);
    EXPECT_THAT(bench_.log("target=drive:2 request=write"), SizeIs(3));
}

TEST_F(Clone, WithLargeSectorsNamesTheDrivesOwnSector) {
    openDrives(4 * kBlock, 4 * kBlock, R"({"reads": [{"firstSector": 33}]})", "", 4096);
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_THAT(events(), ElementsAre("ERROR: BAD READ BLOCK AT SECTOR: [32]"));
    EXPECT_TRUE(arrived(0, 2 * kBlock));
    EXPECT_EQ(content(2, 2 * kBlock, kBlock), unreadable(kBlock));
    EXPECT_TRUE(arrived(3 * kBlock, 4 * kBlock));
}

/// Every second block has a bad sector.
std::string badBlocks(int count) {
    std::string reads;
    for (int i = 0; i < count; ++i) {
        reads += (i == 0 ? "" : ", ") + (R"({"firstSector": )" + std::to_string(i * 2 * 128 + 5)) + "}";
    }
    return R"({"reads": [)" + reads + "]}";
}

TEST_F(Clone, WithTenUnreadableBlocksFinishes) {
    openDrives(24 * kBlock, 24 * kBlock, badBlocks(10));
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(source_->badReadCount, 10U);
    EXPECT_THAT(events(), SizeIs(10));
    EXPECT_EQ(display_.lastStatus(), " Image Completed");
    EXPECT_EQ(state().raceTrack.failed, 0);
    EXPECT_TRUE(arrived(23 * kBlock, 24 * kBlock));
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 10 unreadable blocks");
}

TEST_F(Clone, TheEleventhUnreadableBlockStopsItAfterThatBlockWasWritten) {
    openDrives(24 * kBlock + 512, 24 * kBlock + 512, badBlocks(11));
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(source_->badReadCount, 11U);
    EXPECT_EQ(content(2, 20 * kBlock, kBlock), unreadable(kBlock));
    EXPECT_EQ(content(2, 21 * kBlock, kBlock), std::string(kBlock, '\0'));
    EXPECT_EQ(display_.lastStatus(), " User Terminated Image");
    EXPECT_THAT(display_.timers(), ElementsAre(750, 750));
    EXPECT_EQ(state().raceTrack.failed, 1);
    EXPECT_FALSE(state().jobs.active());
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD not completed, 11 unreadable blocks");
    // The reader waits after a failed read, so nothing was asked of the drive behind the eleventh.
    EXPECT_THAT(bench_.log("target=drive:1 request=read"), SizeIs(21));
}

TEST_F(Clone, ReverseShowsTheBadBlockExplosionSooner) {
    openDrives(24 * kBlock, 24 * kBlock, badBlocks(11));
    EXPECT_EQ(run(runReverseClone), 1U);
    EXPECT_THAT(display_.timers(), ElementsAre(500, 750));
    EXPECT_EQ(display_.lastStatus(), " User Terminated Clone");
}

TEST_F(Clone, AnUnreadableRemainderIsMarkedWhole) {
    openDrives(2 * kBlock + 1024, 2 * kBlock + 1024, R"({"reads": [{"firstSector": 257}]})");
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(content(2, 2 * kBlock, 1024), unreadable(1024));
    EXPECT_THAT(events(), ElementsAre("ERROR: BAD READ BLOCK AT SECTOR: [256]"));
    EXPECT_EQ(display_.lastStatus(), " Image Completed");
}

TEST_F(Clone, TheEleventhAsTheRemainderCompletesAndFails) {
    std::string faults = badBlocks(10);
    faults.insert(faults.size() - 2, R"(, {"firstSector": 2560})");
    openDrives(20 * kBlock + 512, 20 * kBlock + 512, faults);
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(source_->badReadCount, 11U);
    EXPECT_EQ(display_.lastStatus(), " Image Completed");
    EXPECT_EQ(state().raceTrack.failed, 1);
    EXPECT_EQ(state().raceTrack.succeeded, 1);
    EXPECT_THAT(display_.timers(), ElementsAre(750));
}

TEST_F(Clone, AShortReadIsABadBlock) {
    openDrives(3 * kBlock, 3 * kBlock, R"({"shortReads": [{"firstSector": 130, "bytes": 65024}]})");
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(source_->badReadCount, 1U);
    EXPECT_EQ(content(2, kBlock, kBlock), unreadable(kBlock));
    EXPECT_TRUE(arrived(2 * kBlock, 3 * kBlock));
}

TEST_F(Clone, AFailedSeekWritesThePreviousBlockAgainAndIsNotLogged) {
    openDrives(4 * kBlock, 4 * kBlock, R"({"seeks": [{"firstSector": 256}]})");
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(source_->badReadCount, 0U);
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_EQ(content(2, 2 * kBlock, kBlock), noise(7, kBlock, kBlock));
    EXPECT_TRUE(arrived(3 * kBlock, 4 * kBlock));
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 1 unreadable block");
}

TEST_F(Clone, AFailedSeekForWritingIsCountedNowhereButInTheDriveList) {
    openDrives(3 * kBlock, 3 * kBlock, "{}", R"(, "faults": {"seeks": [{"firstSector": 128}]})");
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(destination_->writeErrorCount, 0U);
    EXPECT_EQ(content(2, kBlock, kBlock), std::string(kBlock, '\0'));
    EXPECT_TRUE(arrived(2 * kBlock, 3 * kBlock));
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 1 failed write");
}

TEST_F(Clone, FailedWritesAreCountedAndTheCloneGoesOn) {
    openDrives(5 * kBlock, 5 * kBlock, "{}", R"(, "faults": {"writes": [{"firstSector": 130, "sectors": 200}]})");
    destination_->writeErrorCount = 3;
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(destination_->writeErrorCount, 5U) << "a later job goes on counting";
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_TRUE(arrived(3 * kBlock, 5 * kBlock));
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 2 failed writes");
    EXPECT_EQ(display_.losses(), "red: 2 failed writes");
}

TEST_F(Clone, ASourceThatVanishesGivesElevenBadBlocks) {
    openDrives(30 * kBlock, 30 * kBlock, R"({"vanishAfterRequests": 5})");
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_TRUE(arrived(0, 5 * kBlock));
    EXPECT_EQ(source_->badReadCount, 11U);
    EXPECT_EQ(content(2, 15 * kBlock, kBlock), unreadable(kBlock));
    EXPECT_EQ(content(2, 16 * kBlock, kBlock), std::string(kBlock, '\0'));
    EXPECT_EQ(display_.lastStatus(), " User Terminated Image");
}

TEST_F(Clone, ADestinationThatVanishesIsCountedToTheEnd) {
    openDrives(8 * kBlock, 8 * kBlock, "{}", R"(, "faults": {"vanishAfterRequests": 5})");
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(destination_->writeErrorCount, 3U);
    EXPECT_TRUE(arrived(0, 5 * kBlock));
    EXPECT_EQ(display_.lastStatus(), " Image Completed");
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 3 failed writes");
}

TEST_F(Clone, TerminateStopsItAfterTheBlockInFlight) {
    openDrives(20 * kBlock + 512, 20 * kBlock + 512);
    int progress = 0;
    display_.onStatus = [&](std::string_view text) {
        if (text.find('%') != std::string_view::npos && ++progress == 4) {
            terminate();
        }
    };
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_TRUE(arrived(0, 5 * kBlock));
    EXPECT_EQ(content(2, 5 * kBlock, kBlock), std::string(kBlock, '\0'));
    EXPECT_EQ(content(2, 20 * kBlock, 512), std::string(512, '\0'));
    EXPECT_EQ(display_.lastStatus(), " User Terminated Image");
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD not completed");
    EXPECT_EQ(display_.losses(), "red: 960.5 KB of the source not copied");
}

TEST_F(Clone, ASourceThatWasUnpluggedCostsTheDestinationNothing) {
    openDrives(10 * kBlock, 10 * kBlock, "{}", kUsedDisk);
    bench_.unplug(1);
    for (const auto job : {runForwardClone, runReverseClone}) {
        expectChangedDrive("SOURCE");
        EXPECT_EQ(run(job), 0U);
        expectNothingWasWritten();
        EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty());
    }
}

TEST_F(Clone, ASourceThatWasReplacedByOneOfItsSizeCostsTheDestinationNothing) {
    openDrives(10 * kBlock, 10 * kBlock, "{}", kUsedDisk);
    bench_.swap(1);
    expectChangedDrive("SOURCE");
    EXPECT_EQ(run(runForwardClone), 0U);
    expectNothingWasWritten();
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty());
}

TEST_F(Clone, ADestinationThatWasUnpluggedIsNotCleaned) {
    openDrives(10 * kBlock, 10 * kBlock, "{}", kUsedDisk);
    bench_.unplug(2);
    expectChangedDrive("DESTINATION");
    EXPECT_EQ(run(runForwardClone), 0U);
    expectNothingWasWritten();
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty());
}

TEST_F(Clone, ADestinationThatGoesWhileItIsCleanedGetsNoBlock) {
    describeSlowClean();
    openDrives(3 * kBlock, 3 * kBlock);
    expectChangedDrive("DESTINATION", "What diskpart has changed is not known");
    EXPECT_EQ(cloneWhileItIsCleaned([this] { bench_.unplug(2); }), 0U);
    expectNothingWasWritten();
}

TEST_F(Clone, ASourceThatGoesWhileTheDestinationIsCleanedGivesNoBlock) {
    describeSlowClean();
    openDrives(3 * kBlock, 3 * kBlock);
    expectChangedDrive("SOURCE", "The DESTINATION was cleaned before, nothing was written to it");
    EXPECT_EQ(cloneWhileItIsCleaned([this] { bench_.swap(1); }), 0U);
    expectNothingWasWritten();
}

TEST_F(Clone, ASourceThatGoesWhileTheUserIsAskedGivesNoBlock) {
    bench_.describe(kRefusingDiskPart);
    openDrives(3 * kBlock, 10 * kBlock, "{}", kUsedDisk);
    user_.expectAskDefaultNo(kNotCleaned, kContinueAnyway, true, [this] { bench_.unplug(1); });
    expectChangedDrive("SOURCE");
    EXPECT_EQ(run(runForwardClone), 0U);
    expectNothingWasWritten();
}

TEST_F(Clone, TerminateBeforeTheDiskIsCleanedTouchesNothing) {
    openDrives(3 * kBlock, 3 * kBlock);
    display_.onStatus = [&](std::string_view) { terminate(); };
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty());
    EXPECT_THAT(bench_.log("target=drive:2 request=write"), IsEmpty());
    EXPECT_EQ(display_.lastStatus(), " User Terminated Image");
}

TEST_F(Clone, TerminateWhileTheDiskIsCleanedWritesNothing) {
    describeSlowClean();
    openDrives(3 * kBlock, 3 * kBlock);
    EXPECT_EQ(cloneWhileItIsCleaned([] { terminate(); }), 1U);
    EXPECT_THAT(bench_.log("request=diskpart"), Not(IsEmpty()));
    EXPECT_THAT(bench_.log("target=drive:2 request=write"), IsEmpty());
    EXPECT_EQ(display_.lastStatus(), " User Terminated Image");
}

TEST_F(Clone, AskedToStopBeforeItsFlagWasRaisedItTouchesNothing) {
    openDrives(3 * kBlock, 3 * kBlock);
    for (const auto job : {runForwardClone, runReverseClone}) {
        EXPECT_EQ(runAskedToStop(job), 1U);
        EXPECT_FALSE(state().jobs.active());
    }
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty());
    EXPECT_THAT(bench_.log("target=drive:2 request=write"), IsEmpty());
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD not completed");
}

TEST_F(Clone, AStopThatWasAskedOfAnEarlierJobDoesNotStopTheNext) {
    openDrives(3 * kBlock, 3 * kBlock);
    EXPECT_EQ(runAskedToStop(runForwardClone), 1U);
    ASSERT_TRUE(start(CopyKind::kForwardClone));
    ASSERT_TRUE(awaitEnd());
    EXPECT_TRUE(arrived(0, 3 * kBlock));
}

TEST_F(Clone, ASlowReadDelaysTheEndOfATerminatedClone) {
    openDrives(20 * kBlock, 20 * kBlock, R"({"slow": [{"firstSector": 256, "milliseconds": 1500}]})");
    display_.onStatus = [&](std::string_view text) {
        if (text.find('%') != std::string_view::npos) {
            EXPECT_TRUE(bench_.awaitLog("target=drive:1 request=wait")) << "reading ahead reaches the slow block";
            terminate();
        }
    };
    const ULONGLONG start = GetTickCount64();
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_GE(GetTickCount64() - start, 1500U) << "the read in flight completes";
    EXPECT_THAT(bench_.log("target=drive:1 request=read"), SizeIs(3));
    EXPECT_TRUE(arrived(0, 2 * kBlock));
    EXPECT_EQ(content(2, 2 * kBlock, kBlock), std::string(kBlock, '\0'));
}

TEST_F(Clone, WithoutMemoryDoesNotBegin) {
    openDrives(kBlock, kBlock);
    EXPECT_EQ(run(runForwardClone, kTooMuchMemory), 0U);
    EXPECT_THAT(events(), ElementsAre("ERROR: Could not ALLOCATE copy buffers"));
    EXPECT_THAT(view_.driveStatuses(*source_), ElementsAre("BAD not started"));
    EXPECT_THAT(view_.driveStatuses(*destination_), ElementsAre("BAD not started"));
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty());
}

TEST_F(Clone, LeavesNoHandleBehind) {
    openDrives(5 * kBlock, 5 * kBlock, badBlocks(2));
    testing::expectNoHandleLost([this] {
        run(runForwardClone);
        run(runReverseClone);
    });
}

TEST_F(Clone, AsAThreadReleasesTheDrivesLast) {
    openDrives(3 * kBlock, 3 * kBlock);
    ASSERT_TRUE(start(CopyKind::kForwardClone));
    ASSERT_TRUE(awaitEnd());
    EXPECT_FALSE(state().jobs.active());
    EXPECT_TRUE(arrived(0, 3 * kBlock));
}

TEST_F(Clone, ASecondJobDoesNotStartWhileTheFirstOnesThreadIsAtWork) {
    openDrives(3 * kBlock, 3 * kBlock,
               R"({"slow": [{"firstSector": 0, "milliseconds": )" + std::string(testing::kUntilToldToHurry) + "}]}");
    ASSERT_TRUE(start(CopyKind::kForwardClone));
    user_.expectStop(
        "***** Working *****",
        "Still at work: a clone.\n\nNothing was started. What was told to stop ends with the read, write or "
        "tool that it has under way. Please try again then.");
    EXPECT_FALSE(start(CopyKind::kForwardClone));
    bench_.hurry();
    ASSERT_TRUE(awaitEnd());
    EXPECT_THAT(bench_.log("target=drive:1 request=read"), SizeIs(1));
}

TEST_F(Clone, WithoutRoomForAThreadIsLoggedAndLeavesTheDrivesToOthers) {
    openDrives(kBlock, kBlock);
    {
        const testing::ImportPatched patched(
            __imp_CreateThread,
            +[](LPSECURITY_ATTRIBUTES, SIZE_T, LPTHREAD_START_ROUTINE, LPVOID, DWORD, LPDWORD) -> HANDLE {
                return nullptr;
            });
        EXPECT_FALSE(start(CopyKind::kForwardClone));
    }
    EXPECT_THAT(events(), ElementsAre("ERROR: Could not start the copy job"));
    EXPECT_TRUE(state().jobs.atWork().empty());
}

TEST_F(Clone, KeepsTheSystemAwakeAndLetsItSleepAgain) {
    openDrives(2 * kBlock, 2 * kBlock);
    const auto current = [] { return SetThreadExecutionState(ES_SYSTEM_REQUIRED); };
    std::vector<EXECUTION_STATE> during;
    display_.onStatus = [&](std::string_view) { during.push_back(current()); };
    run(ForwardClone);
    ASSERT_FALSE(during.empty());
    EXPECT_THAT(during, Each(static_cast<EXECUTION_STATE>(ES_CONTINUOUS | ES_SYSTEM_REQUIRED)));
    EXPECT_EQ(current(), static_cast<EXECUTION_STATE>(ES_CONTINUOUS));
}

} // namespace
} // namespace torvane
