#include "tests/component/bench_test_folder.h"
#include "tests/component/handle_count.h"
#include "workbench/session/unique_handle.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace torvane::testing {
namespace {

using bench::UniqueHandle;

constexpr DWORD kMiB = 1024 * 1024;

// Drive 0: 8 MiB, volume C: from 1 MiB to 5 MiB. Drive 2: 4096-byte sectors, sector numbers as content. No drive 1.
const char* const kSystem = R"({"number": 0, "bus": "sata", "size": "8 MiB", "road": "ata",
    "identity": {"product": "Disk Zero", "serial": "Z0"},
    "volumes": [{"letter": "C", "label": "SYSTEM", "serial": "1A2B-3C4D",
                 "extents": [{"offset": "1 MiB", "length": "4 MiB"}]}]})";
const char* const kNumbers = R"({"number": 2, "bus": "usb", "size": "4 MiB", "sectorSize": 4096,
    "backing": {"pattern": "sector-number"}})";

class BenchTransferTest : public BenchTest {
  protected:
    void SetUp() override { openBench("{}", {{"0.json", kSystem}, {"2.json", kNumbers}}); }

    static UniqueHandle open(const char* path, DWORD access = GENERIC_READ | GENERIC_WRITE) {
        return UniqueHandle(
            CreateFileA(path, access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    }

    // Moves to `offset` and transfers; returns the error, and leaves the count in `count_`.
    DWORD read(const UniqueHandle& handle, std::uint64_t offset, DWORD length) {
        buffer_.assign(length, 0xEE);
        seek(handle, offset);
        SetLastError(0);
        return ReadFile(handle.get(), buffer_.data(), length, &count_, nullptr) != 0 ? 0 : GetLastError();
    }
    DWORD write(const UniqueHandle& handle, std::uint64_t offset, const std::vector<std::uint8_t>& data) {
        seek(handle, offset);
        SetLastError(0);
        return WriteFile(handle.get(), data.data(), static_cast<DWORD>(data.size()), &count_, nullptr) != 0
                   ? 0
                   : GetLastError();
    }
    static DWORD flush(const UniqueHandle& handle) { return FlushFileBuffers(handle.get()) != 0 ? 0 : GetLastError(); }
    static void seek(const UniqueHandle& handle, std::uint64_t offset) {
        LARGE_INTEGER place{};
        place.QuadPart = static_cast<LONGLONG>(offset);
        ASSERT_NE(SetFilePointerEx(handle.get(), place, nullptr, FILE_BEGIN), 0);
    }
    [[nodiscard]] std::string textAt(std::size_t position, std::size_t length) const {
        return {buffer_.begin() + static_cast<std::ptrdiff_t>(position),
                buffer_.begin() + static_cast<std::ptrdiff_t>(position + length)};
    }

    std::vector<std::uint8_t> buffer_;
    DWORD count_ = 0;
};

TEST_F(BenchTransferTest, DescribedDevicesExistAndNoOthersDo) {
    EXPECT_TRUE(open(R"(\\.\PhysicalDrive0)"));
    EXPECT_TRUE(open(R"(\\.\physicaldrive2)"));
    EXPECT_TRUE(open("//./C:"));
    EXPECT_TRUE(open(R"(\\?\PhysicalDrive0)"));
    for (const char* path : {R"(\\.\PhysicalDrive1)", R"(\\.\PhysicalDrive63)", R"(\\.\D:)", R"(\\.\Z:)", R"(\\.\A:)",
                             R"(\\.\Scsi7:)", R"(\\?\GLOBALROOT\Device\Harddisk0\Partition0)", R"(\\.\HarddiskVolume1)",
                             R"(\\.\CdRom0)", R"(\\.\PhysicalDrive0\)", R"(\\.\MountPointManager)"}) {
        SetLastError(0);
        EXPECT_FALSE(open(path)) << path;
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND)) << path;
    }
}

TEST_F(BenchTransferTest, WideAndNarrowOpenTheSameDevice) {
    const UniqueHandle wide(CreateFileW(LR"(\\.\PhysicalDrive0)", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_TRUE(wide);
    EXPECT_EQ(bench().logLines({"target=drive:0", "request=open", "result=ok"}).size(), 1U);
}

TEST_F(BenchTransferTest, FilesAreReal) {
    const UniqueHandle file(
        CreateFileA("note.txt", GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    ASSERT_TRUE(file);
    EXPECT_EQ(write(file, 0, {'a', 'b', 'c'}), 0U);
    EXPECT_EQ(read(file, 1, 2), 0U);
    EXPECT_EQ(textAt(0, 2), "bc");
    EXPECT_EQ(GetFileSize(file.get(), nullptr), 3U);
    EXPECT_TRUE(open("NUL"));
    EXPECT_TRUE(open(R"(\\.\NUL)"));
    EXPECT_TRUE(bench().logLines("note.txt").empty());
}

TEST_F(BenchTransferTest, WhatIsWrittenIsReadAgain) {
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive0)");
    ASSERT_TRUE(drive);
    std::vector<std::uint8_t> data(1024);
    for (std::size_t i = 0; i < data.size(); ++i) {
        data[i] = static_cast<std::uint8_t>(i * 7);
    }
    EXPECT_EQ(write(drive, 6 * kMiB, data), 0U);
    EXPECT_EQ(count_, 1024U);
    EXPECT_EQ(read(drive, 6 * kMiB - 512, 2048), 0U);
    EXPECT_EQ(count_, 2048U);
    EXPECT_TRUE(std::equal(data.begin(), data.end(), buffer_.begin() + 512));
    EXPECT_EQ(buffer_[511], 0);
    EXPECT_EQ(buffer_[512 + 1024], 0);
    EXPECT_EQ(bench().logLines({"target=drive:0 request=write offset=6291456 length=1024 result=ok bytes=1024"}).size(),
              1U);
}

TEST_F(BenchTransferTest, TransfersAreWholeSectors) {
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive0)");
    const UniqueHandle large = open(R"(\\.\PhysicalDrive2)");
    EXPECT_EQ(read(drive, 0, 511), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(read(drive, 1, 512), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(write(drive, 6 * kMiB + 100, std::vector<std::uint8_t>(512)),
              static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(read(large, 512, 4096), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(read(large, 4096, 512), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(read(large, 4096, 4096), 0U);
    EXPECT_EQ(textAt(0, 16), "LBA=000000000008");
}

TEST_F(BenchTransferTest, NothingIsTransferredPastTheEnd) {
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive0)");
    EXPECT_EQ(read(drive, 8 * kMiB - 512, 512), 0U);
    EXPECT_EQ(read(drive, 8 * kMiB - 512, 1024), static_cast<DWORD>(ERROR_SECTOR_NOT_FOUND));
    EXPECT_EQ(count_, 0U);
    EXPECT_EQ(read(drive, 8 * kMiB, 512), static_cast<DWORD>(ERROR_SECTOR_NOT_FOUND));
    EXPECT_EQ(write(drive, 8 * kMiB, std::vector<std::uint8_t>(512)), static_cast<DWORD>(ERROR_SECTOR_NOT_FOUND));
    EXPECT_EQ(read(drive, 0x7FFFFFFFFFFFFE00ULL, 512), static_cast<DWORD>(ERROR_SECTOR_NOT_FOUND));
}

TEST_F(BenchTransferTest, APathThatIsTooLongIsNotFoundWithoutItsPrefix) {
    const std::wstring folder = scratchFolder().wstring() + L"\\";
    const std::wstring longest = folder + std::wstring(MAX_PATH - 1 - folder.size(), L'n');
    const auto create = [](const std::wstring& path) {
        return UniqueHandle(
            CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    };
    EXPECT_TRUE(create(longest));
    EXPECT_FALSE(create(longest + L"n"));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
    EXPECT_TRUE(create(L"\\\\?\\" + longest + L"n"));
    EXPECT_EQ(GetFileAttributesW((longest + L"n").c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_TRUE(DeleteFileW((L"\\\\?\\" + longest + L"n").c_str()));
}

TEST_F(BenchTransferTest, MountedVolumesTakeNoWritesThroughTheDisk) {
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive0)");
    const std::vector<std::uint8_t> sector(512, 0x5A);
    EXPECT_EQ(write(drive, kMiB, sector), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_EQ(write(drive, kMiB - 512, std::vector<std::uint8_t>(1024)), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_EQ(write(drive, 5 * kMiB - 512, sector), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_EQ(write(drive, kMiB - 512, sector), 0U);
    EXPECT_EQ(write(drive, 5 * kMiB, sector), 0U);
    EXPECT_EQ(read(drive, kMiB, 512), 0U);
    EXPECT_EQ(buffer_[0], 0); // nothing of the refused writes is there
}

TEST_F(BenchTransferTest, AccessIsWhatWasAskedFor) {
    const UniqueHandle reader = open(R"(\\.\PhysicalDrive0)", GENERIC_READ);
    const UniqueHandle writer = open(R"(\\.\PhysicalDrive0)", GENERIC_WRITE);
    const UniqueHandle neither = open(R"(\\.\PhysicalDrive0)", 0);
    ASSERT_TRUE(reader && writer && neither);
    const std::vector<std::uint8_t> sector(512);
    EXPECT_EQ(write(reader, 0, sector), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_EQ(write(writer, 0, sector), 0U);
    EXPECT_EQ(read(writer, 0, 512), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_EQ(read(neither, 0, 512), static_cast<DWORD>(ERROR_ACCESS_DENIED));
}

TEST_F(BenchTransferTest, PatternsTakeNoWrites) {
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive2)");
    EXPECT_EQ(write(drive, 0, std::vector<std::uint8_t>(4096)), static_cast<DWORD>(ERROR_WRITE_PROTECT));
}

TEST_F(BenchTransferTest, OnlyExistingDevicesAreOpened) {
    const HANDLE handle =
        CreateFileA(R"(\\.\PhysicalDrive0)", GENERIC_READ, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr);
    EXPECT_EQ(handle, INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

TEST_F(BenchTransferTest, ADiskHasNoFileSize) {
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive0)");
    SetLastError(0);
    EXPECT_EQ(GetFileSize(drive.get(), nullptr), INVALID_FILE_SIZE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_FUNCTION));
    LARGE_INTEGER size{};
    EXPECT_EQ(GetFileSizeEx(drive.get(), &size), 0);
    EXPECT_EQ(SetFilePointer(drive.get(), 0, nullptr, FILE_END), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_FUNCTION));
}

TEST_F(BenchTransferTest, ThePointerMovesWithTransfersAndIsSharedByDuplicates) {
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive0)");
    LONG high = 1;
    EXPECT_EQ(SetFilePointer(drive.get(), 0x200, &high, FILE_BEGIN), 0x200U);
    EXPECT_EQ(high, 1);
    EXPECT_EQ(SetFilePointer(drive.get(), 1024, nullptr, FILE_BEGIN), 1024U);
    std::array<std::uint8_t, 512> sector{};
    DWORD count = 0;
    ASSERT_NE(ReadFile(drive.get(), sector.data(), 512, &count, nullptr), 0);
    EXPECT_EQ(SetFilePointer(drive.get(), 0, nullptr, FILE_CURRENT), 1536U);
    EXPECT_EQ(SetFilePointer(drive.get(), -2048, nullptr, FILE_CURRENT), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NEGATIVE_SEEK));
    HANDLE duplicate = nullptr;
    ASSERT_NE(DuplicateHandle(GetCurrentProcess(), drive.get(), GetCurrentProcess(), &duplicate, 0, FALSE,
                              DUPLICATE_SAME_ACCESS),
              0);
    const UniqueHandle other(duplicate);
    EXPECT_NE(other.get(), drive.get());
    EXPECT_EQ(SetFilePointer(other.get(), 512, nullptr, FILE_CURRENT), 2048U);
    EXPECT_EQ(SetFilePointer(drive.get(), 0, nullptr, FILE_CURRENT), 2048U);
}

TEST_F(BenchTransferTest, AVolumeReadsItsExtents) {
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive0)");
    EXPECT_EQ(write(drive, kMiB - 512, std::vector<std::uint8_t>(512, 0x11)), 0U);
    const UniqueHandle volume = open(R"(\\.\C:)");
    EXPECT_EQ(read(volume, 0, 512), 0U);
    EXPECT_EQ(buffer_[0], 0);
    EXPECT_EQ(read(volume, 4 * kMiB, 512), static_cast<DWORD>(ERROR_SECTOR_NOT_FOUND));
    EXPECT_EQ(write(volume, 0, std::vector<std::uint8_t>(512)), static_cast<DWORD>(ERROR_ACCESS_DENIED));
}

TEST_F(BenchTransferTest, ClosingLeaksNothing) {
    const auto openAndClose = [] {
        for (const char* path : {R"(\\.\PhysicalDrive0)", R"(\\.\PhysicalDrive2)", R"(\\.\C:)", R"(\\.\Scsi0:)"}) {
            ASSERT_TRUE(open(path)) << path;
        }
        EXPECT_FALSE(open(R"(\\.\PhysicalDrive1)"));
    };
    openAndClose(); // makes the backing file
    const DWORD before = openHandleCount();
    for (int i = 0; i < 20; ++i) {
        openAndClose();
    }
    EXPECT_LE(lowestHandleCount(before), before);
    EXPECT_EQ(bench().logLines({"target=drive:0", "request=close"}).size(), 21U);
}

TEST_F(BenchTransferTest, ALostHandleShowsInTheCount) {
    const DWORD before = lowestHandleCount(0, 20); // threads of earlier tests are gone
    {
        const UniqueHandle drive = open(R"(\\.\PhysicalDrive2)");
        EXPECT_GT(openHandleCount(), before);
    }
    EXPECT_LE(lowestHandleCount(before), before);
}

TEST_F(BenchTransferTest, AnUnpluggedDriveIsGoneAtOnce) {
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive0)");
    EXPECT_EQ(read(drive, 0, 512), 0U);
    EXPECT_TRUE(bench().unplug(0));
    EXPECT_EQ(read(drive, 0, 512), static_cast<DWORD>(ERROR_DEVICE_NOT_CONNECTED));
    EXPECT_FALSE(open(R"(\\.\PhysicalDrive0)"));
    EXPECT_FALSE(open(R"(\\.\C:)"));
    EXPECT_TRUE(bench().plug(0));
    EXPECT_TRUE(open(R"(\\.\PhysicalDrive0)"));
    EXPECT_TRUE(open(R"(\\.\C:)"));
    EXPECT_FALSE(bench().unplug(1));
}

TEST_F(BenchTransferTest, ADriveInAnothersPlaceIsOpenedAnew) {
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive0)");
    EXPECT_EQ(write(drive, 0, std::vector<std::uint8_t>(512, 0x11)), 0U);
    EXPECT_TRUE(bench().swap(0));
    EXPECT_EQ(read(drive, 0, 512), static_cast<DWORD>(ERROR_DEVICE_NOT_CONNECTED));
    EXPECT_FALSE(open(R"(\\.\C:)"));
    {
        const UniqueHandle other = open(R"(\\.\PhysicalDrive0)");
        EXPECT_EQ(read(other, 0, 512), 0U);
        EXPECT_EQ(buffer_.front(), 0);
        EXPECT_EQ(write(other, 1 * kMiB, std::vector<std::uint8_t>(512, 0x22)), 0U) << "no volume is mounted there";
    }
    EXPECT_TRUE(bench().swap(0));
    EXPECT_EQ(read(drive, 0, 512), 0U);
    EXPECT_EQ(buffer_.front(), 0x11);
    EXPECT_EQ(read(drive, 1 * kMiB, 512), 0U);
    EXPECT_EQ(buffer_.front(), 0) << "the other's content is its own";
    EXPECT_FALSE(bench().swap(1));
}

TEST_F(BenchTransferTest, AHandleReachesTheMediumThatIsInTheReader) {
    ASSERT_EQ(tryBench("{}", {{"0.json", R"({"number": 0, "bus": "usb", "size": "1 MiB", "removable": true})"}}), "");
    const UniqueHandle reader = open(R"(\\.\PhysicalDrive0)");
    EXPECT_EQ(write(reader, 0, std::vector<std::uint8_t>(512, 0x11)), 0U);
    EXPECT_TRUE(bench().swap(0));
    EXPECT_EQ(read(reader, 0, 512), 0U);
    EXPECT_EQ(buffer_.front(), 0);
    EXPECT_EQ(write(reader, 0, std::vector<std::uint8_t>(512, 0x22)), 0U);
    EXPECT_TRUE(bench().swap(0));
    EXPECT_EQ(read(reader, 0, 512), 0U);
    EXPECT_EQ(buffer_.front(), 0x11);
    EXPECT_TRUE(bench().swap(0));
    EXPECT_EQ(read(reader, 0, 512), 0U);
    EXPECT_EQ(buffer_.front(), 0x22);
}

TEST_F(BenchTransferTest, AfterClosingDevicesAreTheMachinesAgain) {
    bench().close();
    const std::size_t before = bench().logLines().size();
    open(R"(\\.\PhysicalDrive0)"); // whatever this finds, it is not the bench
    EXPECT_EQ(bench().logLines().size(), before);
    EXPECT_EQ(GetEnvironmentVariableA("TORVANE_BENCH", nullptr, 0), 0U);
}

TEST_F(BenchTransferTest, AModuleLoadedLaterIsOnTheBenchToo) {
    const HMODULE kernel = GetModuleHandleA("kernel32.dll");
    const FARPROC address = GetProcAddress(kernel, "CreateFileA");
    decltype(&CreateFileA) function = nullptr;
    std::memcpy(&function, &address, sizeof(function));
    const UniqueHandle drive(
        function(R"(\\.\PhysicalDrive2)", GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_TRUE(drive);
}

// --- faults --------------------------------------------------------------------------------------------------------

class BenchFaultTest : public BenchTransferTest {
  protected:
    void SetUp() override {}
    void openFaulty(const std::string& faults) {
        openBench("{}", {{"4.json", R"({"number": 4, "bus": "sata", "size": "1 MiB", "faults": )" + faults + "}"}});
    }
};

TEST_F(BenchFaultTest, ReadsThatTouchABadSectorFail) {
    openFaulty(R"({"reads": [{"firstSector": 100, "sectors": 2}, {"firstSector": 300, "error": "ERROR_IO_DEVICE"}]})");
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive4)");
    EXPECT_EQ(read(drive, 99 * 512, 512), 0U);
    EXPECT_EQ(read(drive, 99 * 512, 1024), static_cast<DWORD>(ERROR_CRC));
    EXPECT_EQ(read(drive, 101 * 512, 512), static_cast<DWORD>(ERROR_CRC));
    EXPECT_EQ(read(drive, 102 * 512, 512), 0U);
    EXPECT_EQ(read(drive, 0, 1024 * 1024), static_cast<DWORD>(ERROR_CRC));
    EXPECT_EQ(read(drive, 300 * 512, 512), static_cast<DWORD>(ERROR_IO_DEVICE));
    EXPECT_EQ(write(drive, 100 * 512, std::vector<std::uint8_t>(512)), 0U);
}

TEST_F(BenchFaultTest, AFaultMayComeAndGo) {
    openFaulty(R"({"reads": [{"firstSector": 0, "after": 1, "times": 2}]})");
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive4)");
    EXPECT_EQ(read(drive, 0, 512), 0U);
    EXPECT_EQ(read(drive, 0, 512), static_cast<DWORD>(ERROR_CRC));
    EXPECT_EQ(read(drive, 0, 512), static_cast<DWORD>(ERROR_CRC));
    EXPECT_EQ(read(drive, 0, 512), 0U);
}

TEST_F(BenchFaultTest, ShortReadsSucceedWithFewerBytes) {
    openFaulty(R"({"shortReads": [{"firstSector": 8, "bytes": 1536}]})");
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive4)");
    EXPECT_EQ(read(drive, 8 * 512, 4096), 0U);
    EXPECT_EQ(count_, 1536U);
    EXPECT_EQ(read(drive, 8 * 512, 512), 0U);
    EXPECT_EQ(count_, 512U);
}

TEST_F(BenchFaultTest, SeeksFailInTheirRange) {
    openFaulty(R"({"seeks": [{"firstSector": 16, "sectors": 4}]})");
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive4)");
    EXPECT_EQ(SetFilePointer(drive.get(), 15 * 512, nullptr, FILE_BEGIN), 15U * 512);
    EXPECT_EQ(SetFilePointer(drive.get(), 16 * 512, nullptr, FILE_BEGIN), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SEEK));
    EXPECT_EQ(SetFilePointer(drive.get(), 0, nullptr, FILE_CURRENT), 15U * 512);
    EXPECT_EQ(bench().logLines({"target=drive:4 request=seek offset=8192", "result=ERROR_SEEK"}).size(), 1U);
}

TEST_F(BenchFaultTest, CorruptWritesSucceedAndStoreSomethingElse) {
    openFaulty(R"({"corruptWrites": [{"firstSector": 3, "sectors": 2, "times": 1}]})");
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive4)");
    EXPECT_EQ(write(drive, 1024, std::vector<std::uint8_t>(1024, 9)), 0U);
    EXPECT_EQ(count_, 1024U);
    EXPECT_EQ(read(drive, 1024, 1536), 0U);
    EXPECT_EQ(buffer_[511], 9);
    EXPECT_EQ(buffer_[512], 9 ^ 0xFF);
    EXPECT_EQ(buffer_[1023], 9 ^ 0xFF);
    EXPECT_EQ(buffer_[1024], 0) << "was not written";
    EXPECT_EQ(write(drive, 1024, std::vector<std::uint8_t>(1024, 9)), 0U);
    EXPECT_EQ(read(drive, 1024, 1024), 0U);
    EXPECT_EQ(buffer_[1023], 9) << "once only";
}

TEST_F(BenchFaultTest, FlushesFailWhenTheyAreMeantTo) {
    openFaulty(R"({"flush": {"error": "ERROR_WRITE_FAULT", "after": 1, "times": 1}})");
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive4)");
    EXPECT_EQ(flush(drive), 0U);
    EXPECT_EQ(flush(drive), static_cast<DWORD>(ERROR_WRITE_FAULT));
    EXPECT_EQ(flush(drive), 0U);
    EXPECT_EQ(bench().logLines({"target=drive:4 request=flush result=ERROR_WRITE_FAULT"}).size(), 1U);
    EXPECT_EQ(flush(open(R"(\\.\PhysicalDrive4)", GENERIC_READ)), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_EQ(flush(open(R"(\\.\Scsi4:)")), static_cast<DWORD>(ERROR_INVALID_FUNCTION));
    bench().unplug(4);
    EXPECT_EQ(flush(drive), static_cast<DWORD>(ERROR_DEVICE_NOT_CONNECTED));
}

TEST_F(BenchFaultTest, AVolatileCacheLosesWhatWasNotFlushedWhenItsDriveIsUnplugged) {
    openFaulty(R"({"volatileCache": true})");
    {
        const UniqueHandle drive = open(R"(\\.\PhysicalDrive4)");
        EXPECT_EQ(write(drive, 0, std::vector<std::uint8_t>(1024, 1)), 0U);
        EXPECT_EQ(flush(drive), 0U);
        EXPECT_EQ(write(drive, 0, std::vector<std::uint8_t>(512, 2)), 0U);
        EXPECT_EQ(write(drive, 0, std::vector<std::uint8_t>(512, 3)), 0U);
        EXPECT_EQ(write(drive, 4096, std::vector<std::uint8_t>(512, 4)), 0U);
        EXPECT_EQ(read(drive, 0, 512), 0U);
        EXPECT_EQ(buffer_[0], 3) << "reads see the cache";
        bench().unplug(4);
        EXPECT_EQ(write(drive, 0, std::vector<std::uint8_t>(512, 5)), static_cast<DWORD>(ERROR_DEVICE_NOT_CONNECTED));
    }
    bench().plug(4);
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive4)");
    EXPECT_EQ(read(drive, 0, 8192), 0U);
    EXPECT_EQ(buffer_[0], 1);
    EXPECT_EQ(buffer_[512], 1);
    EXPECT_EQ(buffer_[4096], 0);
}

TEST_F(BenchFaultTest, AVolatileCacheIsLostWhenItsDriveVanishes) {
    openFaulty(R"({"volatileCache": true, "vanishAfterRequests": 2})");
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive4)");
    EXPECT_EQ(write(drive, 0, std::vector<std::uint8_t>(512, 1)), 0U);
    EXPECT_EQ(flush(drive), 0U);
    EXPECT_EQ(write(drive, 0, std::vector<std::uint8_t>(512, 2)), 0U);
    EXPECT_EQ(flush(drive), static_cast<DWORD>(ERROR_DEVICE_NOT_CONNECTED));
    EXPECT_EQ(readFile("bench\\backing\\drive4.img").front(), 1);
}

TEST_F(BenchFaultTest, WritesFailInTheirRange) {
    openFaulty(R"({"writes": [{"firstSector": 1}]})");
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive4)");
    EXPECT_EQ(write(drive, 0, std::vector<std::uint8_t>(512)), 0U);
    EXPECT_EQ(write(drive, 0, std::vector<std::uint8_t>(1024, 9)), static_cast<DWORD>(ERROR_IO_DEVICE));
    EXPECT_EQ(read(drive, 0, 512), 0U);
    EXPECT_EQ(buffer_[0], 0);
}

TEST_F(BenchFaultTest, SlowSectorsTakeTheirTime) {
    openFaulty(R"({"slow": [{"firstSector": 1, "milliseconds": 120}]})");
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive4)");
    const ULONGLONG start = GetTickCount64();
    EXPECT_EQ(read(drive, 512, 512), 0U);
    EXPECT_GE(GetTickCount64() - start, 100U);
}

TEST_F(BenchFaultTest, ASlowTransferIsLoggedBeforeItWaits) {
    constexpr ULONGLONG kTooLong = 300000;
    openFaulty(R"({"slow": [{"firstSector": 1, "milliseconds": )" + std::to_string(kTooLong) + "}]}");
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive4)");
    const ULONGLONG start = GetTickCount64();
    std::thread looking([this] {
        EXPECT_TRUE(awaitLog({"target=drive:4 request=wait offset=512 length=512 result=ok"}));
        EXPECT_TRUE(bench().logLines("request=read").empty()) << "the read has not ended";
        hurry();
    });
    EXPECT_EQ(read(drive, 512, 512), 0U);
    looking.join();
    EXPECT_LT(GetTickCount64() - start, kTooLong);
}

TEST_F(BenchFaultTest, ADriveMayVanishInTheMiddle) {
    openFaulty(R"({"vanishAfterRequests": 3})");
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive4)");
    EXPECT_EQ(read(drive, 0, 512), 0U);
    EXPECT_EQ(write(drive, 0, std::vector<std::uint8_t>(512)), 0U);
    EXPECT_EQ(read(drive, 0, 512), 0U);
    EXPECT_EQ(read(drive, 0, 512), static_cast<DWORD>(ERROR_DEVICE_NOT_CONNECTED));
    EXPECT_FALSE(open(R"(\\.\PhysicalDrive4)"));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

TEST_F(BenchFaultTest, ADriveMayStopAnsweringInTheMiddle) {
    openFaulty(R"({"stopsAnswering": {"afterRequests": 2, "milliseconds": 300}})");
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive4)");
    EXPECT_EQ(read(drive, 0, 512), 0U);
    EXPECT_EQ(write(drive, 0, std::vector<std::uint8_t>(512)), 0U);
    ULONGLONG start = GetTickCount64();
    EXPECT_EQ(read(drive, 0, 512), static_cast<DWORD>(ERROR_SEM_TIMEOUT));
    EXPECT_GE(GetTickCount64() - start, 290U);
    start = GetTickCount64();
    EXPECT_EQ(write(drive, 0, std::vector<std::uint8_t>(512)), static_cast<DWORD>(ERROR_SEM_TIMEOUT));
    EXPECT_GE(GetTickCount64() - start, 290U);
    // It is still there.
    EXPECT_TRUE(open(R"(\\.\PhysicalDrive4)"));
}

TEST_F(BenchFaultTest, ABenchThatIsToHurryWaitsForNoDrive) {
    openFaulty(R"({"slow": [{"firstSector": 0, "milliseconds": 60000}],
                   "stopsAnswering": {"afterRequests": 1, "milliseconds": 60000}})");
    const UniqueHandle drive = open(R"(\\.\PhysicalDrive4)");
    hurry();
    const ULONGLONG start = GetTickCount64();
    EXPECT_EQ(read(drive, 0, 512), 0U);
    EXPECT_EQ(read(drive, 0, 512), static_cast<DWORD>(ERROR_SEM_TIMEOUT)) << "the fault itself stays";
    EXPECT_LT(GetTickCount64() - start, 60000U);
}

TEST_F(BenchFaultTest, OpeningFailsAsDescribed) {
    openFaulty(R"({"open": {"error": "ERROR_ACCESS_DENIED", "times": 1}})");
    EXPECT_FALSE(open(R"(\\.\PhysicalDrive4)"));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_TRUE(open(R"(\\.\PhysicalDrive4)"));
}

TEST_F(BenchFaultTest, AWrongBenchLeavesTheProcessAlone) {
    const std::string error =
        tryBench("{}", {{"4.json", R"({"number": 4, "bus": "sata", "size": "1 MiB", "sectorSize": 1000})"}});
    EXPECT_EQ(error, "drives/4.json: sectorSize: expected 512 or 4096, got 1000");
    EXPECT_EQ(GetEnvironmentVariableA("TORVANE_BENCH", nullptr, 0), 0U);
}

} // namespace
} // namespace torvane::testing
