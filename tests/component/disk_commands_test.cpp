#include "admin/disk_commands.h"
#include "base/owned_handle.h"
#include "state/still_at_work.h"
#include "tests/component/copy_bench.h"
#include "tests/component/import_patched.h"
#include "tests/component/started_threads.h"
#include "tests/support/recording_log_file.h"

namespace torvane {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using testing::ImportPatched;
using ::testing::IsEmpty;

class DiskCommands : public testing::CopyBench {
  protected:
    ~DiskCommands() override {
        testing::StartedThreads::awaitAll();
        EXPECT_TRUE(state().jobs.atWork().empty());
        EXPECT_FALSE(state().jobs.active());
    }

    DriveRecord& openDisk(const std::string& more = "", const std::string& diskpart = "{}") {
        bench_.describe(R"({"tools": {"diskpart": )" + diskpart + "}}");
        bench_.addDrive(
            R"({"number": 3, "bus": "nvme", "identity": {"product": "Tarn N16", "serial": "S1"}, "size": "16 MiB")" +
            more + "}");
        return drive(3);
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

    static JobClaim begin(JobKind kind) { return state().jobs.begin(kind).value(); }
    /// Makes the change on this thread.
    static DWORD run(DWORD (*change)(AppState&, JobClaim&, DriveRecord&), DriveRecord& disk) {
        JobClaim claim = begin(JobKind::kDiskChange);
        EXPECT_TRUE(state().jobs.active());
        return change(state(), claim, disk);
    }
    static DWORD awaitWorker() { return testing::StartedThreads::awaitLast(); }

    testing::StartedThreads threads_;

    static constexpr const char* kReadOnly = R"(, "readOnly": true)";
    static constexpr const char* kSilent = R"({"missing": true})";
};

TEST_F(DiskCommands, ReadOnlyIsSetAndSaidSo) {
    DriveRecord& disk = openDisk();
    user_.expectInform("****** READ-ONLY SET ******", "Disk 003 - Tarn N16 S1 is now READ-ONLY",
                       [] { EXPECT_FALSE(state().jobs.active()); });
    EXPECT_EQ(run(setReadOnly, disk), 1U);
    EXPECT_EQ(disk.readOnly, 1);
    EXPECT_THAT(view_.driveStatuses(disk), ElementsAre("Setting read-only", "COMPLETED read-only set"));
    EXPECT_THAT(events(), ElementsAre("SUCCESS: Disk 003 - Tarn N16 S1 is now READ-ONLY"));
}

TEST_F(DiskCommands, ReadOnlyIsClearedAndSaidSo) {
    DriveRecord& disk = openDisk(kReadOnly);
    user_.expectInform("****** READ-ONLY CLEARED ******", "Disk 003 - Tarn N16 S1 is now WRITABLE");
    EXPECT_EQ(run(clearReadOnly, disk), 1U);
    EXPECT_EQ(disk.readOnly, 0);
    EXPECT_THAT(view_.driveStatuses(disk), ElementsAre("Clearing read-only", "COMPLETED read-only cleared"));
    EXPECT_THAT(events(), ElementsAre("SUCCESS: Disk 003 - Tarn N16 S1 is now WRITABLE"));
}

TEST_F(DiskCommands, AnAttributeThatCannotBeSetIsSaid) {
    DriveRecord& disk = openDisk("", kSilent);
    user_.expectStop("****** READ-ONLY NOT SET ******", "Disk 003 - Tarn N16 S1 has NOT been set READ-ONLY");
    EXPECT_EQ(run(setReadOnly, disk), 0U);
    EXPECT_EQ(lastDriveStatus(disk), "BAD read-only not set");
    EXPECT_EQ(events().back(), "FAILURE: Disk 003 - Tarn N16 S1 has NOT been set READ-ONLY");
}

TEST_F(DiskCommands, AnAttributeThatCannotBeClearedIsSaid) {
    DriveRecord& disk = openDisk(kReadOnly, R"({"output": "DiskPart has encountered an error.\r\n"})");
    user_.expectStop("****** READ-ONLY NOT CLEARED ******",
                     "Disk 003 - Tarn N16 S1 is STILL READ-ONLY, or its state is not known");
    EXPECT_EQ(run(clearReadOnly, disk), 0U);
    EXPECT_EQ(lastDriveStatus(disk), "BAD read-only not cleared");
}

TEST_F(DiskCommands, CleaningSaysThatItIsDone) {
    DriveRecord& disk = openDisk();
    user_.expectInform("****** DISK CLEANED ******", "Disk 003 - Tarn N16 S1 has been CLEANED",
                       [] { EXPECT_FALSE(state().jobs.active()); });
    EXPECT_EQ(run(cleanDisk, disk), 1U);
    EXPECT_THAT(view_.driveStatuses(disk), ElementsAre("Cleaning disk", "COMPLETED disk cleaned"));
    EXPECT_THAT(events(), ElementsAre("SUCCESS: Disk 003 - Tarn N16 S1 has been CLEANED"));
}

TEST_F(DiskCommands, AReadOnlyDiskIsNotCleanedAndThatIsSaid) {
    DriveRecord& disk = openDisk(kReadOnly);
    user_.expectStop("****** DISK NOT CLEANED ******", "Disk 003 - Tarn N16 S1 has NOT been CLEANED");
    EXPECT_EQ(run(cleanDisk, disk), 0U);
    EXPECT_EQ(lastDriveStatus(disk), "BAD disk not cleaned");
    EXPECT_THAT(events(), ElementsAre("ERROR: Could nore VERIFY partition CLEAR for [\\\\.\\PhysicalDrive3]",
                                      "FAILURE: Disk 003 - Tarn N16 S1 has NOT been CLEANED"));
    EXPECT_FALSE(state().jobs.active());
}

TEST_F(DiskCommands, ADriveThatHasChangedIsNotTouchedAndThatIsSaid) {
    DriveRecord& disk = openDisk();
    bench_.unplug(3);
    constexpr const char* kText = "The DISK is not the drive that was loaded any more, or it does not answer. Nothing "
                                  "was changed. Load the drives again";
    user_.expectStop("***** DRIVE HAS CHANGED *****", kText, [] { EXPECT_FALSE(state().jobs.active()); });
    EXPECT_EQ(run(cleanDisk, disk), 0U);
    EXPECT_EQ(lastDriveStatus(disk), "BAD disk not cleaned");
    EXPECT_EQ(events().back(), "FAILURE: Disk 003 - Tarn N16 S1 has NOT been CLEANED");
    user_.expectStop("***** DRIVE HAS CHANGED *****", kText);
    EXPECT_EQ(run(setReadOnly, disk), 0U);
    EXPECT_EQ(lastDriveStatus(disk), "BAD read-only not set");
    EXPECT_THAT(bench_.log("request=start"), IsEmpty());
}

TEST_F(DiskCommands, WithoutDiskPartNothingIsCleanedAndThatIsSaid) {
    DriveRecord& disk = openDisk("", kSilent);
    user_.expectStop("****** DISK NOT CLEANED ******", "Disk 003 - Tarn N16 S1 has NOT been CLEANED");
    EXPECT_EQ(run(cleanDisk, disk), 0U);
}

TEST_F(DiskCommands, CleansAndReadOnlyChangesStandInTheDaysLog) {
    DriveRecord& disk = openDisk();
    const testing::RecordingLogFile file;
    user_.expectInform("****** READ-ONLY SET ******", "Disk 003 - Tarn N16 S1 is now READ-ONLY");
    EXPECT_EQ(run(setReadOnly, disk), 1U);
    user_.expectStop("****** DISK NOT CLEANED ******", "Disk 003 - Tarn N16 S1 has NOT been CLEANED");
    EXPECT_EQ(run(cleanDisk, disk), 0U);
    EXPECT_THAT(file.messages("JOB"),
                ElementsAre("Set Read-Only of disk 003 - Tarn N16 S1, 16777216 bytes begins",
                            "Set Read-Only of disk 003 - Tarn N16 S1, 16777216 bytes ended: done",
                            "Clean Disk of disk 003 - Tarn N16 S1, 16777216 bytes begins",
                            "Clean Disk of disk 003 - Tarn N16 S1, 16777216 bytes ended: NOT done"));
}

TEST_F(DiskCommands, ADevicesTextsAreNoFormats) {
    DriveRecord& disk = openDisk();
    disk.model.assign("100%s");
    disk.serialNumber.assign("%n%n");
    user_.expectInform("****** DISK CLEANED ******", "Disk 003 - 100%s %n%n has been CLEANED");
    EXPECT_EQ(run(cleanDisk, disk), 1U);
    EXPECT_THAT(events(), ElementsAre("SUCCESS: Disk 003 - 100%s %n%n has been CLEANED"));
}

TEST_F(DiskCommands, TheWindowsThreadDoesNotWaitForDiskPart) {
    DriveRecord& disk = openDisk("", R"({"delayMilliseconds": )" + std::string(testing::kUntilToldToHurry) + "}");
    user_.expectInform("****** DISK CLEANED ******", "Disk 003 - Tarn N16 S1 has been CLEANED");
    startCleanDisk(state(), disk);
    EXPECT_TRUE(state().jobs.active());
    EXPECT_EQ(state().jobs.atWork(), JobKinds{JobKind::kDiskChange});
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty());
    bench_.hurry();
    awaitWorker();
    EXPECT_FALSE(state().jobs.active());
    EXPECT_TRUE(state().jobs.atWork().empty());
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
    EXPECT_FALSE(state().jobs.active());
    EXPECT_TRUE(state().jobs.atWork().empty());
    EXPECT_THAT(events(), ElementsAre("ERROR: Could not start the change of the disk"));
    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(DiskCommands, OfADriveThatAnotherTorvaneUsesChangeNothing) {
    DriveRecord& disk = openDisk();
    UniqueHandle other{CreateMutexW(nullptr, FALSE, L"Global\\Torvane.PhysicalDrive3")};
    for (void (*change)(AppState&, DriveRecord&) : {startSetReadOnly, startClearReadOnly, startCleanDisk}) {
        user_.expectStop(
            "***** DRIVE IN USE *****",
            "Drive 3 - Tarn N16 S1 is used by another Torvane on this computer.\n\nNothing was started, and "
            "nothing was done to the drive. Wait for the end of the job there, or terminate it, and try "
            "again.");
        change(state(), disk);
    }
    EXPECT_FALSE(testing::StartedThreads::any());
    EXPECT_THAT(changes(), IsEmpty());
    EXPECT_THAT(events(), Each("ERROR: Drive 3 - Tarn N16 S1 is used by another Torvane: nothing was started"));
    other.reset();
    user_.expectInform("****** READ-ONLY SET ******", "Disk 003 - Tarn N16 S1 is now READ-ONLY", [] {
        const UniqueHandle mine{CreateMutexW(nullptr, FALSE, L"Global\\Torvane.PhysicalDrive3")};
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS)) << "the job keeps others out";
    });
    startSetReadOnly(state(), disk);
    awaitWorker();
    EXPECT_EQ(disk.readOnly, 1);
}

TEST_F(DiskCommands, AChangeThatMayNotBeginAnyMoreChangesNothing) {
    DriveRecord& disk = openDisk();
    const JobClaim copy = begin(JobKind::kClone);
    user_.expectStop("***** Working *****", stillAtWorkText(state().jobs.whyNot(JobKind::kDiskChange)));
    startCleanDisk(state(), disk);
    EXPECT_FALSE(testing::StartedThreads::any());
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_THAT(changes(), IsEmpty());
}

} // namespace
} // namespace torvane
