#include "discovery/volumes_on_drive.h"

#include "discovery/image_place.h"
#include "discovery/volume_table.h"
#include "records/drive_record.h"
#include "tests/support/scripted_volumes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace torvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// Drive 3 of a machine.
class VolumesOnDrive : public ::testing::Test {
  protected:
    VolumesOnDrive() {
        resetVolumeTable(table_);
        drive_.recordKind = kRecordKindPhysicalDrive;
        drive_.driveNumber = 3;
        volumes_.putLetter(L'C', {0});
        volumes_.putLetter(L'K', {3});
        volumes_.putLetter(L'M', {1, 3});
    }

    void addLetterless(const std::wstring& id, const std::wstring& folder, std::uint32_t disk) {
        volumes_.letterless.push_back({L"\\\\?\\Volume{" + id + L"}\\", folder});
        volumes_.devices[L"\\\\?\\Volume{" + id + L"}"] = {.kind = DiskPlace::Kind::kOnDisks, .disks = {disk}};
    }
    void putInTable(char letter, std::uint32_t disk) {
        const VolumeExtent extent{.diskNumber = disk, .startingOffset = 0, .length = 4096};
        appendVolume(table_, letter, {&extent, 1});
    }
    [[nodiscard]] std::vector<std::wstring> roots() { return volumeRootsOn(drive_, table_, volumes_); }
    [[nodiscard]] ImagePlace placeOf(const wchar_t* image) { return placeOfImage(image, drive_, table_, volumes_); }

    DriveRecord drive_;
    VolumeTable table_;
    testing::ScriptedVolumes volumes_;
};

TEST_F(VolumesOnDrive, AreAllThatHaveAnExtentOnIt) {
    EXPECT_THAT(roots(), ElementsAre(L"K:\\", L"M:\\"));
    volumes_.putLetter(L'A', {3});
    volumes_.putLetter(L'Z', {3});
    EXPECT_THAT(roots(), ElementsAre(L"A:\\", L"K:\\", L"M:\\", L"Z:\\"));
}

TEST_F(VolumesOnDrive, AreAskedForWhateverTheTableHasRoomFor) {
    for (int i = 0; i < 50; ++i) {
        putInTable('D', 0);
    }
    ASSERT_EQ(table_.count, 50);
    for (int i = 0; i < 60; ++i) {
        addLetterless(std::to_wstring(i), L"C:\\mnt\\" + std::to_wstring(i) + L"\\", 3);
    }
    EXPECT_THAT(roots(), SizeIs(62));
}

TEST_F(VolumesOnDrive, WithoutALetterComeLastByFolderOrName) {
    addLetterless(L"1", L"C:\\mnt\\", 3);
    addLetterless(L"2", L"", 3);
    addLetterless(L"3", L"C:\\other\\", 0);
    EXPECT_THAT(roots(), ElementsAre(L"K:\\", L"M:\\", L"C:\\mnt\\", L"\\\\?\\Volume{2}\\"));
}

TEST_F(VolumesOnDrive, ALetterThatDoesNotTellKeepsItsPlace) {
    putInTable('P', 3);
    putInTable('Q', 1);
    putInTable('K', 1);
    volumes_.refuseLetter(L'P');
    volumes_.refuseLetter(L'Q');
    EXPECT_THAT(roots(), ElementsAre(L"K:\\", L"M:\\", L"P:\\")) << "what is told now counts";
}

TEST_F(VolumesOnDrive, OfAnImageFileAreNone) {
    drive_.recordKind = kRecordKindImageFile;
    EXPECT_THAT(roots(), IsEmpty());
}

TEST_F(VolumesOnDrive, AnImageIsFoundOnItByLetterMountedFolderSubstituteAndShare) {
    EXPECT_EQ(placeOf(L"k:\\disk.img"), ImagePlace::kOnTheDrive);
    EXPECT_EQ(placeOf(L"C:\\disk.img"), ImagePlace::kElsewhere);
    volumes_.substitutes[L'S'] = L"M:\\images";
    EXPECT_EQ(placeOf(L"S:\\disk.img"), ImagePlace::kOnTheDrive);
    volumes_.mountedFolders[L"C:\\mnt\\"] = L"\\\\?\\Volume{1}\\";
    addLetterless(L"1", L"C:\\mnt\\", 3);
    EXPECT_EQ(placeOf(L"C:\\mnt\\disk.img"), ImagePlace::kOnTheDrive);
    volumes_.putLetter(L'B', {3});
    EXPECT_EQ(placeOf(L"B:\\disk.img"), ImagePlace::kOnTheDrive);
    volumes_.shares[{L"localhost", L"K$"}] = L"K:\\";
    EXPECT_EQ(placeOf(L"\\\\localhost\\K$\\disk.img"), ImagePlace::kOnTheDrive);
    EXPECT_EQ(placeOf(L"\\\\elsewhere\\K$\\disk.img"), ImagePlace::kElsewhere);
}

TEST_F(VolumesOnDrive, AnImageOnAShareByAnUnknownNameIsFoundByItsFile) {
    const FileIdentity image{.volumeSerialNumber = 0x1A2B3C4D, .fileIndex = 77, .size = 1048576, .lastWrite = 5};
    volumes_.files[L"\\\\192.168.1.5\\images\\disk.img"] = image;
    volumes_.filesOfVolumes[L"M:\\"] = image;
    EXPECT_EQ(placeOf(L"\\\\192.168.1.5\\images\\disk.img"), ImagePlace::kOnTheDrive);
    volumes_.finalPaths[L"N:\\disk.img"] = L"\\\\?\\UNC\\192.168.1.5\\images\\disk.img";
    volumes_.files[L"N:\\disk.img"] = image;
    EXPECT_EQ(placeOf(L"N:\\disk.img"), ImagePlace::kOnTheDrive) << "a letter connected with the share";
    volumes_.filesOfVolumes[L"M:\\"].lastWrite = 6;
    EXPECT_EQ(placeOf(L"N:\\disk.img"), ImagePlace::kElsewhere) << "another computer's file of that number";
    volumes_.filesOfVolumes[L"C:\\"] = image;
    EXPECT_EQ(placeOf(L"N:\\disk.img"), ImagePlace::kElsewhere) << "on another drive of this computer";
}

TEST_F(VolumesOnDrive, AnImageWhoseVolumeDoesNotTellIsFoundByTheTableOrNotTold) {
    volumes_.refuseLetter(L'P');
    EXPECT_EQ(placeOf(L"p:\\disk.img"), ImagePlace::kNotTold);
    putInTable('P', 3);
    EXPECT_EQ(placeOf(L"p:\\disk.img"), ImagePlace::kOnTheDrive);
    EXPECT_EQ(placeOf(L"X:\\disk.img"), ImagePlace::kElsewhere) << "a letter that does not exist";
}

} // namespace
} // namespace torvane
