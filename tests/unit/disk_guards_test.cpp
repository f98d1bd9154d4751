#include "admin/disk_guards.h"

#include "jobs/jobs.h"
#include "records/drive_record.h"
#include "records/volume_record.h"
#include "tests/support/scripted_prompts.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

/// Disk 3 of an idle program.
class DiskGuards : public ::testing::Test {
  protected:
    DiskGuards() { disk_.driveNumber = 3; }

    JobClaim begin(JobKind kind) { return jobs_.begin(kind).value(); }
    void putVolume(char letter, int disk) {
        volumes_.records[0] = {.driveLetter = letter, .diskNumber = disk};
        volumes_.count = 1;
    }
    void expectRefusal(const char* caption, const char* text) {
        user_.expectStop(caption, text);
        EXPECT_FALSE(mayChangeDisk(jobs_, disk_));
        user_.expectStop(caption, text);
        EXPECT_FALSE(mayCleanDisk(jobs_, volumes_, disk_));
        EXPECT_EQ(user_.outstanding(), 0U);
    }

    testing::ScriptedPrompts user_;
    Jobs jobs_;
    VolumeTable volumes_;
    DriveRecord disk_;
};

TEST_F(DiskGuards, AnIdleDiskMayBeChanged) {
    EXPECT_TRUE(mayChangeDisk(jobs_, disk_));
    EXPECT_TRUE(mayCleanDisk(jobs_, volumes_, disk_));
    putVolume('K', 3);
    EXPECT_TRUE(mayCleanDisk(jobs_, volumes_, disk_));
    putVolume('C', 2);
    EXPECT_TRUE(mayCleanDisk(jobs_, volumes_, disk_));
}

TEST_F(DiskGuards, NothingIsChangedWhileTheLoaderWorks) {
    const JobClaim scan = begin(JobKind::kScan);
    expectRefusal("***** Working *****", "Drive Loader is Working");
}

TEST_F(DiskGuards, NothingIsChangedWhileTheShortTestRuns) {
    const JobClaim shortTest = begin(JobKind::kShortTest);
    expectRefusal("***** Working *****", "Short Test is Running");
}

TEST_F(DiskGuards, NothingIsChangedWhileAJobRuns) {
    JobClaim mounting = begin(JobKind::kMounting);
    ASSERT_TRUE(mounting.raise());
    expectRefusal("***** Working *****", "A Job is Working");
}

TEST_F(DiskGuards, NothingIsChangedUntilAStoppedCopyHasEnded) {
    const JobClaim copy = begin(JobKind::kClone);
    expectRefusal("***** Working *****", "A Job is Working");
}

TEST_F(DiskGuards, NothingIsChangedUntilAStoppedReadTestHasEnded) {
    const JobClaim test = begin(JobKind::kNistTest);
    jobs_.askToStop();
    expectRefusal("***** Working *****", "A Job is Working");
}

TEST_F(DiskGuards, AnImageFileIsNoDisk) {
    disk_.recordKind = kRecordKindImageFile;
    expectRefusal("***** IMAGE FILE *****", "An image file is no disk of this computer");
}

TEST_F(DiskGuards, TheSystemDriveIsNeverCleaned) {
    disk_.systemDrive = 1;
    user_.expectStop("***** SYSTEM DRIVE *****", "The drive that holds Windows cannot be cleaned");
    EXPECT_FALSE(mayCleanDisk(jobs_, volumes_, disk_));
    EXPECT_TRUE(mayChangeDisk(jobs_, disk_));
}

TEST_F(DiskGuards, TheAttributeIsChangedOnAYesAlone) {
    disk_.model.assign("Tarn N16");
    disk_.serialNumber.assign("S1");
    disk_.sizeGigabytes = 931.513;
    constexpr const char* kSet = "Disk 003 - Tarn N16 S1, 931.51 GB. Nobody will be able to write to it until its "
                                 "read-only attribute is cleared again. Do you want to set it READ-ONLY?";
    constexpr const char* kClear = "Disk 003 - Tarn N16 S1, 931.51 GB. Windows and every program will be able to write "
                                   "to it. Do you want to CLEAR its read-only attribute?";
    for (const bool answer : {false, true}) {
        user_.expectAskDefaultNo("***** SET READ-ONLY *****", kSet, answer);
        EXPECT_EQ(confirmReadOnlyChange(disk_, true), answer);
        user_.expectAskDefaultNo("***** CLEAR READ-ONLY *****", kClear, answer);
        EXPECT_EQ(confirmReadOnlyChange(disk_, false), answer);
    }
}

TEST_F(DiskGuards, TheDriveWithVolumeCIsNeverCleanedWhateverItsMark) {
    // Where numbers have gaps the mark lands on another drive.
    putVolume('C', 3);
    user_.expectStop("***** SYSTEM DRIVE *****", "The drive that holds Windows cannot be cleaned");
    EXPECT_FALSE(mayCleanDisk(jobs_, volumes_, disk_));
}

TEST_F(DiskGuards, ADriveThatTheScanMarkedByMistakeIsNotCalledTheSystemDrive) {
    putVolume('C', 4);
    disk_.systemDrive = 1;
    user_.expectStop("***** MARKED DRIVE *****",
                     "The numbers of the drives have a gap, and so this drive was marked in place of the one that "
                     "holds volume C:. It cannot be cleaned here. Nothing was written");
    EXPECT_FALSE(mayCleanDisk(jobs_, volumes_, disk_));
    putVolume('C', 3);
    user_.expectStop("***** SYSTEM DRIVE *****", "The drive that holds Windows cannot be cleaned");
    EXPECT_FALSE(mayCleanDisk(jobs_, volumes_, disk_));
}

} // namespace
} // namespace torvane
