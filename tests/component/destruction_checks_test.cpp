#include "admin/destruction_checks.h"

#include "admin/volume_refresh.h"
#include "discovery/physical_drive_probe.h"
#include "discovery/volume_map.h"
#include "state/app_state.h"
#include "tests/component/test_bench.h"
#include "tests/support/direct_waiting.h"
#include "tests/support/recording_main_view.h"
#include "tests/support/scripted_prompts.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>

namespace torvane {
namespace {

/// A letter that stands for a folder, as SUBST makes it, for as long as the scope.
class SubstitutedLetter {
  public:
    SubstitutedLetter(const char* letter, const std::filesystem::path& folder) : letter_(letter) {
        EXPECT_TRUE(DefineDosDeviceA(0, letter, folder.string().c_str()));
    }
    ~SubstitutedLetter() { DefineDosDeviceA(DDD_REMOVE_DEFINITION, letter_, nullptr); }
    SubstitutedLetter(const SubstitutedLetter&) = delete;
    SubstitutedLetter& operator=(const SubstitutedLetter&) = delete;

  private:
    const char* letter_;
};

/// Drive 2 is to be overwritten.
class DestructionChecks : public ::testing::Test {
  protected:
    /// Opens a bench on which drive 2 has these volumes; drive 1 has the tests' own folder, where `ownDrive` says so.
    void open(const std::string& volumes, const std::string& otherVolumes = "") {
        addDrive(1, otherVolumes);
        addDrive(2, volumes);
        bench_.open();
        drive_ = ProbePhysicalDrive(2);
        ASSERT_TRUE(drive_);
        state_.scan.volumes = refreshedVolumes(state_.scan.volumes);
    }
    void addDrive(int number, const std::string& volumes) {
        bench_.addDrive(R"({"bus": "nvme", "size": "64 MiB", "number": )" + std::to_string(number) +
                        R"(, "volumes": [)" + volumes + "]}");
    }
    static std::string volume(char letter, const std::string& more = "") {
        return std::string(R"({"letter": ")") + letter + R"(", "extents": [{"offset": "1 MiB", "length": "8 MiB"}])" +
               more + "}";
    }
    static char workLetter() { return std::filesystem::current_path().root_name().string().front(); }
    static std::string inWorkFolder() { return (std::filesystem::current_path() / "disk.img").string(); }

    Confirmation check(const std::string& image) { return checkDestruction(state_, destruction(image)); }
    [[nodiscard]] Destruction destruction(const std::string& image) const {
        return {.drive = *drive_, .caption = "Image To Drive", .sourceImage = image};
    }
    void expectImageRefused(const std::string& image) {
        user_.expectStop("******* WARNING *******", "You cannot copy Image to Source Drive");
        EXPECT_EQ(check(image), Confirmation::kNo) << image;
        EXPECT_EQ(user_.outstanding(), 0U);
    }

    testing::TestBench bench_;
    testing::ScriptedPrompts user_;
    AppState state_;
    testing::RecordingMainView view_;
    testing::ViewInstalled installed_{state_, view_};
    DriveRecordPtr drive_;
};

TEST_F(DestructionChecks, AnImageElsewhereAndNoImageAreNoObstacle) {
    open(volume('K'), volume('M'));
    EXPECT_EQ(check("M:\\disk.img"), Confirmation::kYes);
    EXPECT_EQ(check(inWorkFolder()), Confirmation::kYes);
    EXPECT_EQ(check("\\\\server\\share\\disk.img"), Confirmation::kYes);
    EXPECT_EQ(check(""), Confirmation::kYes);
    EXPECT_EQ(askForWarning(state_, destruction("M:\\disk.img")).value().note, "");
}

TEST_F(DestructionChecks, AnImageOnTheDestinationIsRefusedByEveryLetter) {
    open(volume('B'));
    expectImageRefused("b:\\disk.img");
}

TEST_F(DestructionChecks, AnImageOnTheDestinationIsRefusedBehindASubstitutedLetter) {
    // The tests' own folder lies on drive 2, which is protected for that, too: the image's box comes first.
    open(volume(workLetter()));
    const SubstitutedLetter substituted("S:", std::filesystem::current_path());
    expectImageRefused("S:\\disk.img");
    expectImageRefused(inWorkFolder());
}

TEST_F(DestructionChecks, ASubstitutedLetterOfAnotherDriveIsNoObstacle) {
    open(volume('S'), volume(workLetter()));
    const SubstitutedLetter substituted("T:", std::filesystem::current_path());
    EXPECT_EQ(check("T:\\disk.img"), Confirmation::kYes);
}

TEST_F(DestructionChecks, AnImageWhosePlaceIsNotToldIsSaidInTheWarning) {
    open(volume('K'), volume('M', R"(, "faults": {"extents": "ERROR_NOT_READY"})"));
    EXPECT_EQ(check("M:\\disk.img"), Confirmation::kYes);
    EXPECT_EQ(askForWarning(state_, destruction("M:\\disk.img")).value().note,
              "Windows does not tell on which drive the image lies. Make sure that it is not this one");
}

TEST_F(DestructionChecks, TheWarningListsVolumesWithoutALetterAndThoseThatBitLockerHasLocked) {
    open(volume('K', R"(, "bitLocker": {"state": "locked"})") +
         R"(, {"guid": "01234567-89ab-cdef-0123-456789abcdef", "label": "EFI", "serial": "1A2B-3C4D",
               "extents": [{"offset": "16 MiB", "length": "20 MiB"}]})");
    const std::vector<WarningRow> rows = askForWarning(state_, destruction("")).value().rows;
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[1].name.substr(0, 4), "K:\\ ");
    EXPECT_EQ(rows[2], (WarningRow{"VOLUME", "a volume without letter, 20 MB - EFI - 1A2B-3C4D", "RELATED VOLUME"}));
}

TEST_F(DestructionChecks, AProtectedDriveIsRefusedAndItsStatusKeepsNoEarlierJob) {
    open(volume('C'));
    view_.setDriveStatus(*drive_, "COMPLETED");
    user_.expectStop("***** PROTECTED DRIVE *****",
                     "Drive 2 holds Windows. It is never changed. Nothing was written. Choose another drive");
    EXPECT_EQ(check(""), Confirmation::kRefused);
    EXPECT_EQ(view_.driveStatuses(*drive_).back(), "Idle");
}

TEST_F(DestructionChecks, ADriveThatIsGoneAfterTheWarningIsRefusedAndItsStatusKeepsNoEarlierJob) {
    open(volume('K'));
    view_.setDriveStatus(*drive_, "COMPLETED");
    EXPECT_EQ(checkIdentity(state_, destruction("")), Confirmation::kYes);
    EXPECT_EQ(view_.driveStatuses(*drive_).back(), "COMPLETED");
    bench_.unplug(2);
    user_.expectStop("***** DRIVE HAS CHANGED *****",
                     "The DESTINATION is not the drive that was loaded any more, or it does not answer. Nothing was "
                     "written. Load the drives again");
    EXPECT_EQ(checkIdentity(state_, destruction("")), Confirmation::kRefused);
    EXPECT_EQ(view_.driveStatuses(*drive_).back(), "Idle");
}

TEST_F(DestructionChecks, AreANoWhenTheUserLeavesADriveThatDoesNotAnswer) {
    open(volume('K'));
    const testing::LeftWaits left;
    EXPECT_EQ(check("K:\\disk.img"), Confirmation::kNo);
    EXPECT_EQ(check(""), Confirmation::kNo);
    EXPECT_FALSE(askForWarning(state_, destruction("")).has_value());
    EXPECT_EQ(checkIdentity(state_, destruction("")), Confirmation::kNo);
    const std::int32_t before = state_.scan.volumes.count = 7;
    EXPECT_FALSE(bringVolumesUpToDate(state_.scan));
    EXPECT_EQ(state_.scan.volumes.count, before) << "the old table stays";
}

TEST_F(DestructionChecks, BringTheVolumesUpToDate) {
    open(volume('K'));
    state_.scan.volumes = {};
    EXPECT_TRUE(bringVolumesUpToDate(state_.scan));
    EXPECT_GT(state_.scan.volumes.count, 0);
}

} // namespace
} // namespace torvane
