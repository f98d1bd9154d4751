#include "discovery/windows_volume_system.h"

#include "tests/component/scratch_folder.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>

namespace torvane {
namespace {

/// The system's own answers about real files.
class VolumeSystemTest : public ::testing::Test {
  protected:
    void SetUp() override {
        testing::writeFile("disk.img", "an image");
        testing::writeFile("other.img", "an image");
    }
    static std::wstring inFolder(const char* name) { return (std::filesystem::current_path() / name).wstring(); }
    static std::wstring root() { return std::filesystem::current_path().root_path().wstring(); }

    testing::ScratchFolder folder_;
    WindowsVolumeSystem system_;
};

TEST_F(VolumeSystemTest, AFileIsFoundAgainByItsIdentityAndAnotherIsNot) {
    const auto image = system_.identityOf(inFolder("disk.img"));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size, 8U);
    EXPECT_TRUE(system_.holdsFile(root(), *image));
    const auto other = system_.identityOf(inFolder("other.img"));
    ASSERT_TRUE(other);
    EXPECT_NE(*image, *other);
    FileIdentity changed = *image;
    changed.fileIndex = other->fileIndex;
    changed.lastWrite += 1;
    EXPECT_FALSE(system_.holdsFile(root(), changed));
    changed.fileIndex = 0x7FFFFFFFFFFF;
    EXPECT_FALSE(system_.holdsFile(root(), changed)) << "no such file";
    EXPECT_FALSE(system_.identityOf(inFolder("absent.img")));
}

TEST_F(VolumeSystemTest, AFinalPathHasALetterAndItsMountPointIsTheRoot) {
    EXPECT_EQ(system_.finalPath(inFolder("disk.img")).substr(0, 7), L"\\\\?\\" + root().substr(0, 3));
    EXPECT_EQ(system_.finalPath(inFolder("absent.img")), L"");
    EXPECT_EQ(system_.mountPointOf(inFolder("disk.img")), root());
    EXPECT_TRUE(system_.volumeAt(root()).starts_with(L"\\\\?\\Volume{"));
}

TEST_F(VolumeSystemTest, AShareOfThisComputerIsKnownByItsNames) {
    EXPECT_TRUE(system_.sharedFolder(L"LocalHost", L"no such share"));
    EXPECT_TRUE(system_.sharedFolder(L"127.0.0.1", L"no such share"));
    wchar_t name[MAX_COMPUTERNAME_LENGTH + 1] = {};
    DWORD length = MAX_COMPUTERNAME_LENGTH + 1;
    ASSERT_TRUE(GetComputerNameW(name, &length));
    EXPECT_TRUE(system_.sharedFolder(name, L"no such share"));
    EXPECT_FALSE(system_.sharedFolder(L"another-computer", L"images"));
}

TEST_F(VolumeSystemTest, VolumesWithALetterAreNotAmongThoseWithout) {
    for (const LetterlessVolume& volume : system_.letterlessVolumes()) {
        EXPECT_NE(volume.name, system_.volumeAt(root()));
        EXPECT_GT(volume.folder.size(), 3U);
    }
}

} // namespace
} // namespace torvane
