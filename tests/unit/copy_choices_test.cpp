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
    CopyChoices() { volume = {}; }

    /// The folder that was asked for, and what is told of its volume.
    static inline std::string askedFolder;
    static inline DestinationVolume volume;
    static std::optional<DestinationVolume> volumeOf(std::string_view folder) {
        askedFolder = folder;
        return volume;
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

TEST_F(CopyChoices, AFolderWhosePathWouldBeCutIsNotTaken) {
    folder_.assign("D:\\earlier");
    choosers_.choose("C:\\" + std::string(1020, 'n'));
    EXPECT_TRUE(chooseFolder(folder_));
    EXPECT_EQ(folder_.view().size(), 1023U);
    choosers_.choose("C:\\" + std::string(1021, 'n'));
    user_.expectStop(kFolderCaption, "The path of this folder is too long. Please choose another one.");
    EXPECT_FALSE(chooseFolder(folder_));
    EXPECT_EQ(folder_.view().size(), 1023U) << "as before";
}

TEST_F(CopyChoices, AnImageGoesWhereThereIsRoom) {
    DriveRecord drive;
    drive.sizeBytes = 1000;
    volume.freeBytes = 1000;
    choosers_.choose("E:\\Images");
    EXPECT_TRUE(chooseImageDestination(folder_, drive, volumeOf));
    EXPECT_EQ(folder_.view(), "E:\\Images");
    EXPECT_EQ(askedFolder, "E:\\Images");
}

TEST_F(CopyChoices, AnImageWithoutADestinationIsNotMade) {
    const DriveRecord drive;
    choosers_.choose(std::nullopt);
    user_.expectStop(kFolderCaption, "Please choose a destination folder.");
    EXPECT_FALSE(chooseImageDestination(folder_, drive, volumeOf));
}

TEST_F(CopyChoices, AnImageThatDoesNotFitIsNotMade) {
    DriveRecord drive;
    drive.sizeBytes = 1000;
    volume.freeBytes = 0;
    choosers_.choose("\\\\server\\share");
    user_.expectWarn("****** NOT ENOUGH SPACE ******",
                     "IMAGE Drive is [1000 bytes]. This is [1000 bytes] greater than the total FREE SPACE of [0 bytes] "
                     "on Destination Volume [\\\\server\\share]. Imaging Cancelled");
    EXPECT_FALSE(chooseImageDestination(folder_, drive, volumeOf));
}

TEST_F(CopyChoices, WhatTheSystemDoesNotTellStandsInNobodysWay) {
    DriveRecord drive;
    drive.sizeBytes = 1LL << 40;
    choosers_.choose("\\\\server\\share");
    EXPECT_TRUE(chooseImageDestination(folder_, drive, volumeOf));
}

TEST_F(CopyChoices, AFolderWhoseLetterNothingHasIsNotReached) {
    const DriveRecord drive;
    volume.isThere = false;
    choosers_.choose("X:\\Images");
    user_.expectStop(
        "***** FOLDER NOT REACHED *****",
        "The folder [X:\\Images] cannot be reached. Nothing was made. A letter that Windows has mapped to a "
        "share for you does not count for a program that runs as administrator: choose the share by its "
        "name, \\\\server\\share");
    EXPECT_FALSE(chooseImageDestination(folder_, drive, volumeOf));
}

TEST_F(CopyChoices, WhoDoesNotWaitForTheFoldersAnswerLeavesSilently) {
    const DriveRecord drive;
    choosers_.choose("\\\\server\\share");
    EXPECT_FALSE(chooseImageDestination(
        folder_, drive, [](std::string_view) -> std::optional<DestinationVolume> { return std::nullopt; }));
}

TEST_F(CopyChoices, AnImageThatAFat32VolumeCannotHoldIsMadeWhenTheUserWantsIt) {
    DriveRecord drive;
    drive.sizeBytes = 8000000000;
    volume = {.freeBytes = 9000000000, .fileSystem = "FAT32"};
    const std::string text = *fileTooLargeText(8000000000, "FAT32", "E:\\Images");
    for (const bool wanted : {false, true}) {
        choosers_.choose("E:\\Images");
        user_.expectAskDefaultNo("***** FILE TOO LARGE FOR FAT32 *****", text, wanted);
        EXPECT_EQ(chooseImageDestination(folder_, drive, volumeOf), wanted);
    }
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
