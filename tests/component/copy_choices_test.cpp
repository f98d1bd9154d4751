#include "copy/dialogs/copy_choices.h"

#include "copy/dialogs/destination_folder.h"
#include "state/app_state.h"
#include "state/drive_job.h"
#include "tests/component/scratch_folder.h"
#include "tests/component/scripted_choosers.h"
#include "tests/support/recording_main_view.h"
#include "tests/support/scripted_prompts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace torvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kFolderCaption = "*** ERROR ***";
constexpr const char* kDestinationCaption = "***** ERROR Destination Drive *****";

class CopyChoices : public ::testing::Test {
  protected:
    ~CopyChoices() override {
        state().chosen.destinationFolder.clear();
        state().copy.imageSource = nullptr;
        state().copy.sourceImageLetter = 0;
        state().driveJobAtWork = 0;
        for (DriveRecordPtr& drive : state().scan.drives) {
            drive.reset();
        }
        state().scan.driveCount = 0;
    }

    static AppState& state() { return appState(); }
    static std::string here() { return std::filesystem::current_path().string(); }

    /// One more drive of the last scan.
    static DriveRecord& addDrive(bool system = false) {
        const auto index = static_cast<std::size_t>(state().scan.driveCount++);
        state().scan.drives.at(index) = DriveRecordPtr(new DriveRecord);
        state().scan.drives.at(index)->systemDrive = system ? 1 : 0;
        return *state().scan.drives.at(index);
    }

    testing::ScratchFolder scratch_;
    testing::RecordingMainView view_;
    testing::ViewInstalled installed_{appState(), view_};
    testing::ScriptedPrompts user_;
    testing::ScriptedChoosers choosers_;
};

TEST_F(CopyChoices, CandidatesAreAllDrivesButTheSystemsAndTheSourceInScanOrder) {
    DriveRecord& first = addDrive();
    addDrive(true);
    DriveRecord& source = addDrive();
    DriveRecord& last = addDrive();
    EXPECT_THAT(destinationCandidates(state(), &source), ElementsAre(&first, &last));
    EXPECT_THAT(destinationCandidates(state(), nullptr), ElementsAre(&first, &source, &last));
}

TEST_F(CopyChoices, OneTickedDestinationIsTaken) {
    DriveRecord drive;
    EXPECT_EQ(requireDestination({&drive}), &drive);
}

TEST_F(CopyChoices, NoDestinationIsTold) {
    user_.expectStop(kDestinationCaption, "You must choose one drive as your DESTINATION");
    EXPECT_EQ(requireDestination({}), nullptr);
}

TEST_F(CopyChoices, SeveralDestinationsAreTold) {
    DriveRecord one;
    DriveRecord two;
    user_.expectStop(kDestinationCaption, "You must choose only one drive as your DESTINATION");
    EXPECT_EQ(requireDestination({&one, &two}), nullptr);
}

TEST_F(CopyChoices, AFolderIsChosenWithoutMakingItTheCurrentOne) {
    const std::string before = here();
    choosers_.choose("C:\\");
    FixedText<1024> folder;
    EXPECT_EQ(ChooseDestinationFolder(folder, false), 1);
    EXPECT_EQ(folder.view(), "C:\\");
    EXPECT_EQ(here(), before);
    EXPECT_THAT(choosers_.shown(), ElementsAre("Choose Destination Folder"));
}

TEST_F(CopyChoices, ACancelledFolderIsToldAndKeepsTheLast) {
    choosers_.choose(std::nullopt);
    user_.expectStop(kFolderCaption, "Please choose a destination folder.");
    FixedText<1024> folder;
    folder.assign("D:\\earlier");
    EXPECT_EQ(ChooseDestinationFolder(folder, false), 0);
    EXPECT_EQ(folder.view(), "D:\\earlier");
}

TEST_F(CopyChoices, AFolderCanBecomeTheCurrentOne) {
    const std::string before = here();
    std::filesystem::create_directory("chosen");
    choosers_.choose(before + "\\chosen");
    FixedText<1024> folder;
    EXPECT_EQ(ChooseDestinationFolder(folder, true), 1);
    EXPECT_EQ(here(), before + "\\chosen");
    std::filesystem::current_path(before);
}

TEST_F(CopyChoices, AFolderThatCannotBecomeTheCurrentOneIsTold) {
    const std::string before = here();
    const std::string missing = before + "\\100%s missing";
    choosers_.choose(missing);
    user_.expectStop(kFolderCaption, "Could not set destination directory to <" + missing + ">");
    FixedText<1024> folder;
    EXPECT_EQ(ChooseDestinationFolder(folder, true), 0);
    EXPECT_EQ(here(), before);
}

TEST_F(CopyChoices, AnImageGoesWhereThereIsRoom) {
    DriveRecord drive;
    drive.sizeBytes = 1;
    choosers_.choose(here());
    EXPECT_TRUE(chooseImageDestination(state(), drive));
    EXPECT_EQ(state().copy.imageSource, &drive);
    EXPECT_EQ(state().chosen.destinationFolder.view(), here());
}

TEST_F(CopyChoices, AnImageWithoutADestinationIsNotMade) {
    DriveRecord drive;
    choosers_.choose(std::nullopt);
    user_.expectStop(kFolderCaption, "Please choose a destination folder.");
    EXPECT_FALSE(chooseImageDestination(state(), drive));
    EXPECT_EQ(state().copy.imageSource, nullptr);
}

TEST_F(CopyChoices, AnImageOnAShareHasNoRoomAsFarAsTheSystemTells) {
    DriveRecord drive;
    drive.sizeBytes = 1000;
    choosers_.choose("\\\\server\\share");
    user_.expectWarn("****** NOT ENOUGH SPACE ******",
                     "IMAGE Drive is [1000 bytes]. This is [1000 bytes] greater than the total FREE SPACE of [0 bytes] "
                     "on Destination Volume [\\\\server\\share]. Imaging Cancelled");
    EXPECT_FALSE(chooseImageDestination(state(), drive));
    EXPECT_EQ(state().copy.imageSource, nullptr);
}

TEST_F(CopyChoices, ASourceImageIsRememberedWithItsVolume) {
    state().chosen.destinationFolder.assign("C:\\earlier");
    choosers_.choose("e:\\images\\disk.img");
    EXPECT_TRUE(chooseSourceImage(state()));
    EXPECT_EQ(state().chosen.destinationFolder.view(), "e:\\images\\disk.img");
    EXPECT_EQ(state().copy.sourceImageLetter, 'E');
    EXPECT_THAT(choosers_.shown(), ElementsAre("(*.img) Image Files|*.img;(*.*) All Files|*.*"));
}

TEST_F(CopyChoices, ASourceImageOnAShareHasNoVolume) {
    state().copy.sourceImageLetter = 'E';
    choosers_.choose("\\\\server\\share\\disk.img");
    EXPECT_TRUE(chooseSourceImage(state()));
    EXPECT_EQ(state().copy.sourceImageLetter, 0);
}

TEST_F(CopyChoices, ACancelledSourceImageForgetsTheLastOne) {
    state().chosen.destinationFolder.assign("C:\\earlier.img");
    choosers_.choose(std::nullopt);
    EXPECT_FALSE(chooseSourceImage(state()));
    EXPECT_TRUE(state().chosen.destinationFolder.empty());
}

TEST_F(CopyChoices, NothingStartsWhileTheLastJobsThreadIsAtWork) {
    EXPECT_FALSE(lastDriveJobIsStillEnding(state()));
    EXPECT_THAT(view_.logRows(), IsEmpty());
    state().driveJobAtWork = 1;
    EXPECT_TRUE(lastDriveJobIsStillEnding(state()));
    ASSERT_EQ(view_.logRows().size(), 1U);
    EXPECT_EQ(view_.logRows().front().message, "The last job on a drive has not ended yet");
}

} // namespace
} // namespace torvane
