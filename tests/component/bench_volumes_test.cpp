#include "admin/disk_part.h"
#include "base/owned_handle.h"
#include "discovery/physical_drive_probe.h"
#include "discovery/windows_volume_system.h"
#include "state/app_state.h"
#include "tests/component/test_bench.h"
#include "tests/support/recording_main_view.h"

#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace torvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const wchar_t* kEfi = L"\\\\?\\Volume{01234567-89ab-cdef-0123-456789abcdef}\\";
constexpr const wchar_t* kRecovery = L"\\\\?\\Volume{fedcba98-0000-0000-0000-000000000001}\\";
constexpr std::size_t kSectorBytes = 512;

/// A disk with a lettered volume, an EFI partition without a letter, and a recovery partition mounted in a folder.
class BenchVolumes : public ::testing::Test {
  protected:
    void SetUp() override {
        bench_.addDrive(R"({"number": 1, "bus": "sata", "size": "512 MiB", "volumes": [
            {"letter": "K", "label": "DATA", "extents": [{"offset": "128 MiB", "length": "64 MiB"}]},
            {"guid": "01234567-89AB-cdef-0123-456789abcdef", "label": "EFI", "serial": "1A2B-3C4D",
             "fileSystem": "FAT32", "extents": [{"offset": "1 MiB", "length": "100 MiB"}]},
            {"guid": "fedcba98-0000-0000-0000-000000000001", "folder": "C:\\mnt\\recovery\\", "label": "WinRE",
             "extents": [{"offset": "200 MiB", "length": "1 MiB"}]}]})");
        bench_.open();
    }

    static std::vector<std::wstring> found() {
        std::vector<std::wstring> names;
        std::array<wchar_t, MAX_PATH> name{};
        const HANDLE search = FindFirstVolumeW(name.data(), static_cast<DWORD>(name.size()));
        if (search == INVALID_HANDLE_VALUE) {
            return names;
        }
        do {
            names.emplace_back(name.data());
        } while (FindNextVolumeW(search, name.data(), static_cast<DWORD>(name.size())) != 0);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_MORE_FILES));
        EXPECT_NE(FindVolumeClose(search), FALSE);
        return names;
    }

    static UniqueFile open(const char* path) {
        return UniqueFile(CreateFileA(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, 0, nullptr));
    }

    /// The error of a write of one sector at that place of the disk; 0 for success.
    static DWORD writeAt(std::uint64_t offset) {
        const UniqueFile disk = open(R"(\\.\PhysicalDrive1)");
        LARGE_INTEGER place{};
        place.QuadPart = static_cast<LONGLONG>(offset);
        const std::array<char, kSectorBytes> sector{};
        DWORD written = 0;
        const bool done = SetFilePointerEx(disk.get(), place, nullptr, FILE_BEGIN) != 0 &&
                          WriteFile(disk.get(), sector.data(), kSectorBytes, &written, nullptr) != 0;
        return done ? 0 : GetLastError();
    }

    testing::TestBench bench_;
    testing::RecordingMainView view_;
    testing::ViewInstalled installed_{appState(), view_};
    WindowsVolumeSystem system_;
};

TEST_F(BenchVolumes, AreFoundWithLettersAndWithout) {
    EXPECT_THAT(found(), ElementsAre(kEfi, kRecovery, L"\\\\?\\Volume{00000000-0000-0000-0000-00000000004b}\\"));
    const std::vector<LetterlessVolume> letterless = system_.letterlessVolumes();
    ASSERT_THAT(letterless, SizeIs(2));
    EXPECT_EQ(letterless[0].name, kEfi);
    EXPECT_EQ(letterless[0].folder, L"");
    EXPECT_EQ(letterless[1].folder, L"C:\\mnt\\recovery\\");
}

TEST_F(BenchVolumes, TellTheirPlaceAndTheirLabelByName) {
    EXPECT_TRUE(system_.placeOfDevice(volumeDeviceOf(kEfi)).isOn(1));
    std::array<char, 64> label{};
    DWORD serial = 0;
    for (const char* const root : {R"(\\?\Volume{01234567-89ab-cdef-0123-456789abcdef}\)",
                                   R"(\\?\VOLUME{01234567-89AB-CDEF-0123-456789ABCDEF}\)"}) {
        ASSERT_NE(GetVolumeInformationA(root, label.data(), 64, &serial, nullptr, nullptr, nullptr, 0), FALSE) << root;
        EXPECT_STREQ(label.data(), "EFI");
        EXPECT_EQ(serial, 0x1A2B3C4DU);
    }
    ASSERT_NE(GetVolumeInformationA(R"(c:\MNT\recovery\)", label.data(), 64, &serial, nullptr, nullptr, nullptr, 0),
              FALSE);
    EXPECT_STREQ(label.data(), "WinRE");
    EXPECT_TRUE(open(R"(\\?\Volume{01234567-89ab-cdef-0123-456789abcdef})"));
    EXPECT_FALSE(open(R"(\\?\Volume{01234567-89ab-cdef-0123-456789abcde0})"));
    EXPECT_THAT(bench_.log("target=volume:{01234567-89ab-cdef-0123-456789abcdef} request=open result=ok"), SizeIs(2));
}

TEST_F(BenchVolumes, WithoutALetterRefuseRawWritesUntilTheDiskIsCleaned) {
    constexpr std::uint64_t kMebibyte = 1ULL << 20U;
    for (const std::uint64_t inside : {kMebibyte, 101 * kMebibyte - kSectorBytes, 200 * kMebibyte}) {
        EXPECT_EQ(writeAt(inside), static_cast<DWORD>(ERROR_ACCESS_DENIED)) << inside;
    }
    EXPECT_EQ(writeAt(101 * kMebibyte), 0U) << "behind it";
    const DriveRecordPtr disk = ProbePhysicalDrive(1);
    ASSERT_TRUE(disk);
    ASSERT_EQ(DP_CleanDisk(*disk), 1);
    EXPECT_THAT(found(), IsEmpty());
    EXPECT_FALSE(open(R"(\\?\Volume{01234567-89ab-cdef-0123-456789abcdef})"));
    EXPECT_EQ(writeAt(kMebibyte), 0U);
    EXPECT_EQ(writeAt(200 * kMebibyte), 0U);
}

TEST_F(BenchVolumes, AreGoneWithTheirDisk) {
    bench_.unplug(1);
    EXPECT_THAT(found(), IsEmpty());
    EXPECT_THAT(system_.letterlessVolumes(), IsEmpty());
}

TEST_F(BenchVolumes, TellHowMuchRoomTheirNamesNeed) {
    std::array<wchar_t, 64> names{};
    DWORD needed = 0;
    EXPECT_FALSE(GetVolumePathNamesForVolumeNameW(kRecovery, names.data(), 5, &needed));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MORE_DATA));
    EXPECT_EQ(needed, 18U);
    ASSERT_TRUE(GetVolumePathNamesForVolumeNameW(kRecovery, names.data(), 64, &needed));
    EXPECT_STREQ(names.data(), L"C:\\mnt\\recovery\\");
    EXPECT_FALSE(GetVolumePathNamesForVolumeNameW(L"\\\\?\\Volume{1}\\", names.data(), 64, &needed));
    std::array<char, 10> narrow{};
    EXPECT_EQ(FindFirstVolumeA(narrow.data(), 10), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILENAME_EXCED_RANGE));
}

} // namespace
} // namespace torvane
