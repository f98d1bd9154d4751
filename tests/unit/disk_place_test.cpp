#include "discovery/disk_place.h"

#include "tests/support/scripted_volumes.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

constexpr const wchar_t* kVolume = L"\\\\?\\Volume{11111111-2222-3333-4444-555555555555}";

DiskPlace onDisk(std::uint32_t disk) {
    return {.kind = DiskPlace::Kind::kOnDisks, .disks = {disk}};
}
const DiskPlace kOnNoDisk{.kind = DiskPlace::Kind::kOnNoDisk, .disks = {}};
const DiskPlace kNotTold{};

class DiskPlaceOf : public ::testing::Test {
  protected:
    DiskPlaceOf() {
        volumes_.putLetter(L'C', {0});
        volumes_.putLetter(L'E', {2, 5});
    }
    [[nodiscard]] DiskPlace placeOf(const wchar_t* path) { return diskPlaceOf(path, volumes_); }

    testing::ScriptedVolumes volumes_;
};

TEST_F(DiskPlaceOf, ALetterIsAskedWhetherTheFileOpensOrNot) {
    EXPECT_EQ(placeOf(L"C:\\Windows"), onDisk(0));
    EXPECT_EQ(placeOf(L"c:\\windows"), onDisk(0));
    EXPECT_EQ(placeOf(L"C:"), onDisk(0));
    volumes_.finalPaths[L"e:\\disk.img"] = L"\\\\?\\E:\\disk.img";
    const DiskPlace spanned = placeOf(L"e:\\disk.img");
    EXPECT_TRUE(spanned.isOn(2));
    EXPECT_TRUE(spanned.isOn(5));
    EXPECT_FALSE(spanned.isOn(0));
    EXPECT_FALSE(spanned.isOn(-1));
}

TEST_F(DiskPlaceOf, AAndBAreLettersLikeOthers) {
    volumes_.putLetter(L'A', {3});
    volumes_.putLetter(L'B', {4});
    EXPECT_EQ(placeOf(L"A:\\disk.img"), onDisk(3));
    EXPECT_EQ(placeOf(L"b:\\disk.img"), onDisk(4));
}

TEST_F(DiskPlaceOf, ALetterWithoutAVolumeIsOnNoDiskAndOneThatFailsIsNotTold) {
    EXPECT_EQ(placeOf(L"X:\\disk.img"), kOnNoDisk);
    volumes_.refuseLetter(L'F');
    EXPECT_EQ(placeOf(L"F:\\disk.img"), kNotTold);
    EXPECT_FALSE(kNotTold.isOn(0));
    EXPECT_FALSE(kOnNoDisk.isOn(0));
}

TEST_F(DiskPlaceOf, JunctionsAndLinksAreFollowed) {
    volumes_.finalPaths[L"C:\\images\\disk.img"] = L"\\\\?\\E:\\kept\\disk.img";
    EXPECT_TRUE(placeOf(L"C:\\images\\disk.img").isOn(2));
    EXPECT_FALSE(placeOf(L"C:\\images\\disk.img").isOn(0));
}

TEST_F(DiskPlaceOf, ASubstitutedLetterLeadsToItsFolder) {
    volumes_.substitutes[L'S'] = L"E:\\images";
    EXPECT_TRUE(placeOf(L"s:\\disk.img").isOn(2));
    volumes_.substitutes[L'T'] = L"S:\\more";
    EXPECT_TRUE(placeOf(L"T:\\disk.img").isOn(2));
    // What the system follows by itself is taken as it says.
    volumes_.finalPaths[L"U:\\disk.img"] = L"\\\\?\\C:\\disk.img";
    EXPECT_EQ(placeOf(L"U:\\disk.img"), onDisk(0));
}

TEST_F(DiskPlaceOf, LettersThatStandForEachOtherEndSomewhere) {
    volumes_.substitutes[L'S'] = L"T:\\";
    volumes_.substitutes[L'T'] = L"S:\\";
    EXPECT_EQ(placeOf(L"S:\\disk.img"), kNotTold);
}

TEST_F(DiskPlaceOf, AMountedFolderLeadsToItsVolume) {
    volumes_.mountedFolders[L"C:\\mnt\\"] = std::wstring(kVolume) + L"\\";
    volumes_.devices[kVolume] = onDisk(7);
    EXPECT_EQ(placeOf(L"C:\\mnt\\disk.img"), onDisk(7));
    EXPECT_EQ(placeOf(L"C:\\other\\disk.img"), onDisk(0));
    volumes_.mountedFolders[L"C:\\lost\\"] = L"";
    EXPECT_EQ(placeOf(L"C:\\lost\\disk.img"), kNotTold);
}

TEST_F(DiskPlaceOf, AVolumeWithoutALetterIsAskedByItsName) {
    volumes_.devices[kVolume] = onDisk(7);
    volumes_.finalPaths[L"C:\\link\\disk.img"] = std::wstring(kVolume) + L"\\disk.img";
    EXPECT_EQ(placeOf(L"C:\\link\\disk.img"), onDisk(7));
    EXPECT_EQ(placeOf((std::wstring(kVolume) + L"\\disk.img").c_str()), onDisk(7));
}

TEST_F(DiskPlaceOf, AShareOfThisComputerLeadsToItsFolder) {
    volumes_.shares[{L"localhost", L"C$"}] = L"C:\\";
    volumes_.shares[{L"BENCH", L"images"}] = L"E:\\kept";
    EXPECT_EQ(placeOf(L"\\\\localhost\\C$\\images\\disk.img"), onDisk(0));
    volumes_.finalPaths[L"M:\\disk.img"] = L"\\\\?\\UNC\\BENCH\\images\\disk.img";
    EXPECT_TRUE(placeOf(L"M:\\disk.img").isOn(5)) << "a letter connected with the share";
    volumes_.mountedFolders[L"E:\\kept\\deep\\"] = std::wstring(kVolume) + L"\\";
    volumes_.devices[kVolume] = onDisk(7);
    EXPECT_EQ(placeOf(L"\\\\BENCH\\images\\deep\\disk.img"), onDisk(7)) << "a volume mounted below the shared folder";
}

TEST_F(DiskPlaceOf, AShareOfAnotherComputerIsOnNoDiskOfThisOne) {
    EXPECT_EQ(placeOf(L"\\\\server\\share\\disk.img"), kOnNoDisk);
    volumes_.shares[{L"localhost", L"hidden"}] = L"";
    EXPECT_EQ(placeOf(L"\\\\localhost\\hidden\\disk.img"), kNotTold) << "ours, and Windows does not tell";
}

TEST_F(DiskPlaceOf, AShareOfThisComputerIsKnownByItsFileWhateverTheServerIsCalled) {
    constexpr const wchar_t* kImage = L"\\\\192.168.1.5\\images\\deep\\disk.img";
    constexpr const wchar_t* kHere = L"\\\\localhost\\images\\deep\\disk.img";
    // The volume serial numbers and indices are what each road makes of them.
    const FileIdentity there{.volumeSerialNumber = 1, .fileIndex = 77, .size = 1048576, .lastWrite = 5};
    const FileIdentity here{.volumeSerialNumber = 2, .fileIndex = 78, .size = 1048576, .lastWrite = 5};
    volumes_.shares[{L"localhost", L"images"}] = L"E:\\kept";
    volumes_.files[kImage] = there;
    EXPECT_EQ(placeOf(kImage), kOnNoDisk) << "no such file here";
    volumes_.files[kHere] = here;
    EXPECT_TRUE(placeOf(kImage).isOn(2));
    volumes_.files[kHere].lastWrite = 6;
    EXPECT_EQ(placeOf(kImage), kOnNoDisk) << "another file of that name";
    volumes_.files[kHere] = {.volumeSerialNumber = 1, .fileIndex = 77, .size = 1048577, .lastWrite = 5};
    EXPECT_EQ(placeOf(kImage), kOnNoDisk) << "another file of that name";
    volumes_.files[kHere] = here;
    volumes_.shares.clear();
    EXPECT_EQ(placeOf(kImage), kOnNoDisk);
}

TEST_F(DiskPlaceOf, WhatIsNoPathIsNotTold) {
    EXPECT_EQ(placeOf(L""), kNotTold);
    EXPECT_EQ(placeOf(L"disk.img"), kNotTold);
    EXPECT_EQ(placeOf(L"\\\\.\\PhysicalDrive1"), kNotTold);
}

TEST(DriveLetterOf, IsThatOfAPathThatBeginsWithOne) {
    EXPECT_EQ(driveLetterOf(L"C:\\Windows"), 'C');
    EXPECT_EQ(driveLetterOf(L"k:disk.img"), 'K');
    EXPECT_EQ(driveLetterOf(L"z:"), 'Z');
    for (const wchar_t* const without : {L"", L"C", L"C\\:", L"1:\\", L"\\\\server\\C:", L"\u0163:\\"}) {
        EXPECT_EQ(driveLetterOf(without), '\0');
    }
}

} // namespace
} // namespace torvane
