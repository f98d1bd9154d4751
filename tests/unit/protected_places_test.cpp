#include "admin/protected_places.h"

#include "tests/support/scripted_volumes.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

constexpr const char* kProtected = "***** PROTECTED DRIVE *****";
constexpr const char* kNotKnown = "***** WINDOWS DRIVE NOT KNOWN *****";

class ProtectedPlaces : public ::testing::Test {
  protected:
    ProtectedPlaces() {
        volumes_.putLetter(L'C', {0});
        volumes_.putLetter(L'D', {1});
        volumes_.putLetter(L'E', {2, 3});
        volumes_.putLetter(L'F', {4});
    }

    [[nodiscard]] std::optional<Refusal> protection(int disk) { return protectionOf(disk, folders_, volumes_); }
    static Refusal holds(int disk, const std::string& what) {
        return {kProtected, "Drive " + std::to_string(disk) + " holds " + what +
                                ". It is never changed. Nothing was written. Choose another drive"};
    }
    void expectNoDriveMayBeChanged() {
        for (int disk = 0; disk < 6; ++disk) {
            ASSERT_TRUE(protection(disk)) << disk;
            EXPECT_EQ(protection(disk)->caption, kNotKnown) << disk;
        }
    }

    testing::ScriptedVolumes volumes_;
    ProtectedFolders folders_{.windows = L"C:\\Windows", .program = L"D:\\tools\\Torvane.exe", .current = L"E:\\work"};
};

TEST_F(ProtectedPlaces, EachPlaceProtectsItsDisksAndTheBoxSaysWhich) {
    EXPECT_EQ(protection(0), holds(0, "Windows"));
    EXPECT_EQ(protection(1), holds(1, "the folder that this program runs from"));
    EXPECT_EQ(protection(2), holds(2, "the folder that this program works in"));
    EXPECT_EQ(protection(3), holds(3, "the folder that this program works in")) << "its second extent";
    EXPECT_FALSE(protection(4));
    EXPECT_FALSE(protection(5));
}

TEST_F(ProtectedPlaces, VolumeCIsProtectedAlsoWhereWindowsLiesElsewhere) {
    folders_.windows = L"F:\\Windows";
    EXPECT_EQ(protection(4), holds(4, "Windows"));
    EXPECT_EQ(protection(0), holds(0, "volume C:"));
    volumes_.refuseLetter(L'C');
    EXPECT_FALSE(protection(0)) << "an empty card reader";
    EXPECT_EQ(protection(4), holds(4, "Windows"));
}

TEST_F(ProtectedPlaces, NothingIsChangedWhileWindowsDoesNotTellItsPlace) {
    volumes_.refuseLetter(L'C');
    expectNoDriveMayBeChanged();
    folders_.windows = L"X:\\Windows"; // a RAM disk: it is C: that holds what matters
    expectNoDriveMayBeChanged();
    volumes_.putLetter(L'C', {0});
    EXPECT_FALSE(protection(5));
    folders_.windows = L"F:\\Windows";
    volumes_.refuseLetter(L'F');
    expectNoDriveMayBeChanged();
}

TEST_F(ProtectedPlaces, AMachineWithoutVolumeCProtectsWhatElseThereIs) {
    volumes_.devices.erase(volumeDevice(L'C'));
    EXPECT_FALSE(protection(0));
    EXPECT_EQ(protection(1), holds(1, "the folder that this program runs from"));
}

TEST_F(ProtectedPlaces, OtherFoldersThatDoNotTellTheirPlaceProtectNothing) {
    volumes_.refuseLetter(L'D');
    folders_.current = L"\\\\server\\share";
    EXPECT_FALSE(protection(1));
    EXPECT_FALSE(protection(2));
    folders_.program.clear();
    EXPECT_FALSE(protection(1));
    EXPECT_TRUE(protection(0));
}

TEST_F(ProtectedPlaces, AProgramBehindASubstitutedLetterProtectsTheRealDrive) {
    volumes_.substitutes[L'P'] = L"F:\\portable";
    folders_.program = L"P:\\Torvane.exe";
    EXPECT_EQ(protection(4), holds(4, "the folder that this program runs from"));
}

} // namespace
} // namespace torvane
