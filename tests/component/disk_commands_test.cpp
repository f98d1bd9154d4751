#include "admin/disk_commands.h"
#include "tests/component/copy_bench.h"
#include "tests/component/import_patched.h"

// The import slots of the functions that a test replaces. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&CreateThread) __imp_CreateThread;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane {
namespace {

using ::testing::ElementsAre;
using testing::ImportPatched;
using ::testing::IsEmpty;

class DiskCommands : public testing::CopyBench {
  protected:
    DiskCommands() { resetVolumes(); }
    ~DiskCommands() override {
        resetVolumes();
        state().scan.driveLoaderWorking = 0;
        state().shortTestsAtWork = 0;
        state().driveJobAtWork = 0;
    }

    DriveRecord& openDisk(const std::string& more = "", const std::string& diskpart = "{}") {
        bench_.describe(R"({"tools": {"diskpart": )" + diskpart + "}}");
        bench_.addDrive(
            R"({"number": 3, "bus": "nvme", "identity": {"product": "Tarn N16", "serial": "S1"}, "size": "16 MiB")" +
            more + "}");
        DriveRecord& disk = drive(3);
        state().jobActive = 0;
        return disk;
    }

    static void resetVolumes() { state().scan.volumes = {}; }
    static void putVolume(char letter, int disk) {
        state().scan.volumes.records[0] = {.driveLetter = letter, .diskNumber = disk};
        state().scan.volumes.count = 1;
    }

    /// What diskpart was told to change.
    [[nodiscard]] std::vector<std::string> changes() const {
        std::vector<std::string> lines;
        for (const char* command : {"clean", "attributes disk set", "attributes disk clear"}) {
            for (const std::string& line : bench_.log(std::string("script-line=\"") + command)) {
                lines.push_back(line);
            }
        }
        return lines;
    }

    static void awaitWorker() { ASSERT_EQ(WaitForSingleObject(state().worker.get(), 120000), WAIT_OBJECT_0); }

    void expectRefusal(const DriveRecord& disk, const char* caption, const char* text) {
        user_.expectStop(caption, text);
        EXPECT_FALSE(mayChangeDisk(state(), disk));
        user_.expectStop(caption, text);
        EXPECT_FALSE(mayCleanDisk(state(), disk));
        EXPECT_EQ(user_.outstanding(), 0U);
    }

    static constexpr const char* kReadOnly = R"(, "readOnly": true)";
    static constexpr const char* kSilent = R"({"missing": true})";
};

TEST_F(DiskCommands, ReadOnlyIsSetAndSaidSo) {
    DriveRecord& disk = openDisk();
    state().jobActive = 1;
    user_.expectInform("****** READ-ONLY SET ******", "Disk 003 - Tarn N16 S1 is now READ-ONLY",
                       [] { EXPECT_EQ(state().jobActive, 0); });
    EXPECT_EQ(setReadOnly(state(), disk), 1U);
    EXPECT_EQ(disk.readOnly, 1);
    EXPECT_THAT(view_.driveStatuses(disk), ElementsAre("Setting read-only", "COMPLETED read-only set"));
    EXPECT_THAT(events(), ElementsAre("SUCCESS: Disk 003 - Tarn N16 S1 is now READ-ONLY"));
}

TEST_F(DiskCommands, ReadOnlyIsClearedAndSaidSo) {
    DriveRecord& disk = openDisk(kReadOnly);
    user_.expectInform("****** READ-ONLY CLEARED ******", "Disk 003 - Tarn N16 S1 is now WRITABLE");
    EXPECT_EQ(clearReadOnly(state(), disk), 1U);
    EXPECT_EQ(disk.readOnly, 0);
    EXPECT_THAT(view_.driveStatuses(disk), ElementsAre("Clearing read-only", "COMPLETED read-only cleared"));
    EXPECT_THAT(events(), ElementsAre("SUCCESS: Disk 003 - Tarn N16 S1 is now WRITABLE"));
}

TEST_F(DiskCommands, AnAttributeThatCannotBeSetIsSaid) {
    DriveRecord& disk = openDisk("", kSilent);
    user_.expectStop("****** READ-ONLY NOT SET ******", "Disk 003 - Tarn N16 S1 has NOT been set READ-ONLY");
    EXPECT_EQ(setReadOnly(state(), disk), 0U);
    EXPECT_EQ(lastDriveStatus(disk), "BAD read-only not set");
    EXPECT_EQ(events().back(), "FAILURE: Disk 003 - Tarn N16 S1 has NOT been set READ-ONLY");
}

TEST_F(DiskCommands, AnAttributeThatCannotBeClearedIsSaid) {
    DriveRecord& disk = openDisk(kReadOnly, R"({"output": "DiskPart has encountered an error.\r\n"})");
    user_.expectStop("****** READ-ONLY NOT CLEARED ******",
                     "Disk 003 - Tarn N16 S1 is STILL READ-ONLY, or its state is not known");
    EXPECT_EQ(clearReadOnly(state(), disk), 0U);
    EXPECT_EQ(lastDriveStatus(disk), "BAD read-only not cleared");
}

TEST_F(DiskCommands, CleaningSaysThatItIsDone) {
    DriveRecord& disk = openDisk();
    state().jobActive = 1;
    user_.expectInform("****** DISK CLEANED ******", "Disk 003 - Tarn N16 S1 has been CLEANED",
                       [] { EXPECT_EQ(state().jobActive, 0); });
    EXPECT_EQ(cleanDisk(state(), disk), 1U);
    EXPECT_THAT(view_.driveStatuses(disk), ElementsAre("Cleaning disk", "COMPLETED disk cleaned"));
    EXPECT_THAT(events(), ElementsAre("SUCCESS: Disk 003 - Tarn N16 S1 has been CLEANED"));
}

TEST_F(DiskCommands, AReadOnlyDiskIsNotCleanedAndThatIsSaid) {
    DriveRecord& disk = openDisk(kReadOnly);
    user_.expectStop("****** DISK NOT CLEANED ******", "Disk 003 - Tarn N16 S1 has NOT been CLEANED");
    EXPECT_EQ(cleanDisk(state(), disk), 0U);
    EXPECT_EQ(lastDriveStatus(disk), "BAD disk not cleaned");
    EXPECT_THAT(events(), ElementsAre("ERROR: Could nore VERIFY partition CLEAR for [\\\\.\\PhysicalDrive3]",
                                      "FAILURE: Disk 003 - Tarn N16 S1 has NOT been CLEANED"));
    EXPECT_EQ(state().jobActive, 0);
}

TEST_F(DiskCommands, WithoutDiskPartNothingIsCleanedAndThatIsSaid) {
    DriveRecord& disk = openDisk("", kSilent);
    user_.expectStop("****** DISK NOT CLEANED ******", "Disk 003 - Tarn N16 S1 has NOT been CLEANED");
    EXPECT_EQ(cleanDisk(state(), disk), 0U);
}

TEST_F(DiskCommands, ADevicesTextsAreNoFormats) {
    DriveRecord& disk = openDisk();
    disk.model.assign("100%s");
    disk.serialNumber.assign("%n%n");
    user_.expectInform("****** DISK CLEANED ******", "Disk 003 - 100%s %n%n has been CLEANED");
    EXPECT_EQ(cleanDisk(state(), disk), 1U);
    EXPECT_THAT(events(), ElementsAre("SUCCESS: Disk 003 - 100%s %n%n has been CLEANED"));
}

TEST_F(DiskCommands, TheWindowsThreadDoesNotWaitForDiskPart) {
    DriveRecord& disk = openDisk("", R"({"delayMilliseconds": )" + std::string(testing::kUntilToldToHurry) + "}");
    user_.expectInform("****** DISK CLEANED ******", "Disk 003 - Tarn N16 S1 has been CLEANED");
    startCleanDisk(state(), disk);
    EXPECT_EQ(state().jobActive, 1);
    EXPECT_EQ(state().driveJobAtWork, 1);
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty());
    bench_.hurry();
    awaitWorker();
    EXPECT_EQ(state().jobActive, 0);
    EXPECT_EQ(state().driveJobAtWork, 0);
    EXPECT_EQ(lastDriveStatus(disk), "COMPLETED disk cleaned");
}

TEST_F(DiskCommands, AttributesAreChangedOnTheirOwnThread) {
    DriveRecord& disk = openDisk();
    user_.expectInform("****** READ-ONLY SET ******", "Disk 003 - Tarn N16 S1 is now READ-ONLY");
    startSetReadOnly(state(), disk);
    awaitWorker();
    EXPECT_EQ(disk.readOnly, 1);
    user_.expectInform("****** READ-ONLY CLEARED ******", "Disk 003 - Tarn N16 S1 is now WRITABLE");
    startClearReadOnly(state(), disk);
    awaitWorker();
    EXPECT_EQ(disk.readOnly, 0);
}

TEST_F(DiskCommands, AThreadThatCannotBeStartedChangesNothing) {
    DriveRecord& disk = openDisk();
    {
        const ImportPatched patched(
            __imp_CreateThread,
            +[](LPSECURITY_ATTRIBUTES, SIZE_T, LPTHREAD_START_ROUTINE, LPVOID, DWORD, LPDWORD) -> HANDLE {
                return nullptr;
            });
        startSetReadOnly(state(), disk);
    }
    EXPECT_EQ(state().jobActive, 0);
    EXPECT_EQ(state().driveJobAtWork, 0);
    EXPECT_THAT(events(), ElementsAre("ERROR: Could not start the change of the disk"));
    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(DiskCommands, AnIdleDiskMayBeChanged) {
    const DriveRecord& disk = openDisk();
    EXPECT_TRUE(mayChangeDisk(state(), disk));
    EXPECT_TRUE(mayCleanDisk(state(), disk));
    putVolume('K', 3);
    EXPECT_TRUE(mayCleanDisk(state(), disk));
    putVolume('C', 2);
    EXPECT_TRUE(mayCleanDisk(state(), disk));
}

TEST_F(DiskCommands, NothingIsChangedWhileTheLoaderWorks) {
    const DriveRecord& disk = openDisk();
    state().scan.driveLoaderWorking = 1;
    state().jobActive = 1; // as while a scan runs
    expectRefusal(disk, "***** Working *****", "Drive Loader is Working");
}

TEST_F(DiskCommands, NothingIsChangedWhileTheShortTestRuns) {
    const DriveRecord& disk = openDisk();
    state().shortTestsAtWork = 1;
    expectRefusal(disk, "***** Working *****", "Short Test is Running");
}

TEST_F(DiskCommands, NothingIsChangedWhileAJobRuns) {
    const DriveRecord& disk = openDisk();
    state().jobActive = 1;
    expectRefusal(disk, "***** Working *****", "A Job is Working");
}

TEST_F(DiskCommands, NothingIsChangedUntilAStoppedCopyHasEnded) {
    const DriveRecord& disk = openDisk();
    state().driveJobAtWork = 1;
    expectRefusal(disk, "***** Working *****", "A Job is Working");
}

TEST_F(DiskCommands, AnImageFileIsNoDisk) {
    DriveRecord& disk = openDisk();
    disk.recordKind = kRecordKindImageFile;
    expectRefusal(disk, "***** IMAGE FILE *****", "An image file is no disk of this computer");
}

TEST_F(DiskCommands, TheSystemDriveIsNeverCleaned) {
    DriveRecord& disk = openDisk();
    disk.systemDrive = 1;
    user_.expectStop("***** SYSTEM DRIVE *****", "The drive that holds Windows cannot be cleaned");
    EXPECT_FALSE(mayCleanDisk(state(), disk));
    EXPECT_TRUE(mayChangeDisk(state(), disk));
}

TEST_F(DiskCommands, TheDriveWithVolumeCIsNeverCleanedWhateverItsMark) {
    // Where numbers have gaps the mark lands on another drive.
    const DriveRecord& disk = openDisk();
    putVolume('C', 3);
    user_.expectStop("***** SYSTEM DRIVE *****", "The drive that holds Windows cannot be cleaned");
    EXPECT_FALSE(mayCleanDisk(state(), disk));
}

} // namespace
} // namespace torvane
