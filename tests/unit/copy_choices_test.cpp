#include "copy/dialogs/copy_choices.h"

#include "records/drive_record.h"
#include "tests/support/scripted_choosers.h"
#include "tests/support/scripted_prompts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace torvane {
namespace {

using ::testing::ElementsAre;

constexpr const char* kFolderCaption = "*** ERROR ***";
constexpr const char* kDestinationCaption = "***** ERROR Destination Drive *****";

class CopyChoices : public ::testing::Test {
  protected:
    /// The folder that was asked for, and what is free on its volume.
    static inline std::string askedFolder;
    static inline std::int64_t freeBytes = 0;
    static std::int64_t freeSpace(std::string_view folder) {
        askedFolder = folder;
        return freeBytes;
    }

    FixedText<1024> folder_;
    testing::ScriptedPrompts user_;
    testing::ScriptedChoosers choosers_;
};

TEST_F(CopyChoices, CandidatesAreAllDrivesButTheSystemsAndTheSourceInTheirOrder) {
    DriveRecord first;
    DriveRecord system;
    system.systemDrive = 1;
    DriveRecord source;
    DriveRecord last;
    const std::vector<DriveRecord*> drives{&first, &system, &source, &last};
    EXPECT_THAT(destinationCandidates(drives, {}, &source), ElementsAre(&first, &last));
    EXPECT_THAT(destinationCandidates(drives, {}, nullptr), ElementsAre(&first, &source, &last));
}

TEST_F(CopyChoices, ADriveThatHoldsTheSystemsVolumeIsNoCandidate) {
    DriveRecord first;
    DriveRecord second;
    second.recordKind = kRecordKindPhysicalDrive;
    second.driveNumber = 1;
    VolumeTable volumes;
    volumes.records[0] = {.driveLetter = 'C', .diskNumber = 1};
    volumes.count = 1;
    first.recordKind = kRecordKindPhysicalDrive;
    EXPECT_THAT(destinationCandidates({&first, &second}, volumes, nullptr), ElementsAre(&first));
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

TEST_F(CopyChoices, AFolderIsChosen) {
    choosers_.choose("C:\\");
    EXPECT_TRUE(chooseFolder(folder_));
    EXPECT_EQ(folder_.view(), "C:\\");
    EXPECT_THAT(choosers_.shown(), ElementsAre("Choose Destination Folder"));
}

TEST_F(CopyChoices, ACancelledFolderIsToldAndKeepsTheLast) {
    choosers_.choose(std::nullopt);
    user_.expectStop(kFolderCaption, "Please choose a destination folder.");
    folder_.assign("D:\\earlier");
    EXPECT_FALSE(chooseFolder(folder_));
    EXPECT_EQ(folder_.view(), "D:\\earlier");
}

TEST_F(CopyChoices, AnImageGoesWhereThereIsRoom) {
    DriveRecord drive;
    drive.sizeBytes = 1000;
    freeBytes = 1000;
    choosers_.choose("E:\\Images");
    EXPECT_TRUE(chooseImageDestination(folder_, drive, freeSpace));
    EXPECT_EQ(folder_.view(), "E:\\Images");
    EXPECT_EQ(askedFolder, "E:\\Images");
}

TEST_F(CopyChoices, AnImageWithoutADestinationIsNotMade) {
    const DriveRecord drive;
    choosers_.choose(std::nullopt);
    user_.expectStop(kFolderCaption, "Please choose a destination folder.");
    EXPECT_FALSE(chooseImageDestination(folder_, drive, freeSpace));
}

TEST_F(CopyChoices, AnImageOnAShareHasNoRoomAsFarAsTheSystemTells) {
    DriveRecord drive;
    drive.sizeBytes = 1000;
    freeBytes = 0;
    choosers_.choose("\\\\server\\share");
    user_.expectWarn("****** NOT ENOUGH SPACE ******",
                     "IMAGE Drive is [1000 bytes]. This is [1000 bytes] greater than the total FREE SPACE of [0 bytes] "
                     "on Destination Volume [\\\\server\\share]. Imaging Cancelled");
    EXPECT_FALSE(chooseImageDestination(folder_, drive, freeSpace));
}

TEST_F(CopyChoices, ASourceImageIsRemembered) {
    folder_.assign("C:\\earlier");
    choosers_.choose("e:\\images\\disk.img");
    EXPECT_TRUE(chooseSourceImage(folder_));
    EXPECT_EQ(folder_.view(), "e:\\images\\disk.img");
    EXPECT_THAT(choosers_.shown(), ElementsAre("(*.img) Image Files|*.img;(*.*) All Files|*.*"));
}

TEST_F(CopyChoices, ACancelledSourceImageForgetsTheLastOne) {
    folder_.assign("C:\\earlier.img");
    choosers_.choose(std::nullopt);
    EXPECT_FALSE(chooseSourceImage(folder_));
    EXPECT_TRUE(folder_.empty());
}

} // namespace
} // namespace torvane
