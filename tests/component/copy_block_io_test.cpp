#include "copy/engine/copy_drive_io.h"
#include "copy/engine/digest_text.h"
#include "copy/engine/md5_hasher.h"
#include "copy/engine/sha256_hasher.h"
#include "tests/component/copy_bench.h"
#include "tests/component/import_patched.h"

#include <atomic>
#include <thread>

// The import slots of the functions that a test replaces. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&SetFilePointer) __imp_SetFilePointer;
extern decltype(&FormatMessageA) __imp_FormatMessageA;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane {
namespace {

using testing::ImportPatched;
using ::testing::IsEmpty;
using testing::noise;

// What a block that could not be moved calls for is in the unit tests.
class BlockIo : public testing::CopyBench {
  protected:
    DriveRecord& openDrive(const std::string& more = "", int sectorSize = 512) {
        bench_.addDrive(R"({"number": 1, "bus": "nvme", "size": "8 GiB", "sectorSize": )" + std::to_string(sectorSize) +
                        more + "}");
        return drive(1);
    }
    DriveRecord& openNoise(const std::string& faults, int sectorSize = 512) {
        return openDrive(R"(, "backing": {"pattern": "noise", "seed": 5}, "faults": )" + faults, sectorSize);
    }

    TransferOutcome read(DriveRecord& drive, std::uint64_t offset) {
        return reachAndRead(io_, drive, offset, std::as_writable_bytes(std::span(text_)));
    }
    TransferOutcome write(DriveRecord& drive, std::uint64_t offset) {
        return reachAndWrite(io_, drive, offset, std::as_bytes(std::span(text_)));
    }

    CopyDriveIo io_;
    std::string text_ = std::string(kBlock, '.');
};

TEST_F(BlockIo, ReadsTheWholeBuffer) {
    DriveRecord& source = openNoise("{}");
    EXPECT_EQ(read(source, 5ULL << 30), TransferOutcome::kWhole);
    EXPECT_TRUE(text_ == noise(5, 5ULL << 30, kBlock));
}

TEST_F(BlockIo, AReadThatTheDriveFailsHasFailed) {
    DriveRecord& source = openNoise(R"({"reads": [{"firstSector": 10485861}]})");
    EXPECT_EQ(read(source, 5ULL << 30), TransferOutcome::kFailed);
}

TEST_F(BlockIo, AShortReadIsTheSame) {
    DriveRecord& source = openNoise(R"({"shortReads": [{"firstSector": 8, "bytes": 4096}]})", 4096);
    EXPECT_EQ(read(source, 32768), TransferOutcome::kFailed);
}

TEST_F(BlockIo, OfADriveThatVanishesTheTransfersSaySo) {
    DriveRecord& disk = openNoise(R"({"vanishAfterRequests": 1})");
    EXPECT_EQ(read(disk, 0), TransferOutcome::kWhole);
    EXPECT_EQ(read(disk, 0), TransferOutcome::kGone);
    EXPECT_EQ(write(disk, 0), TransferOutcome::kGone);
}

TEST_F(BlockIo, AFailedSeekForReadingReadsNothing) {
    DriveRecord& source = openNoise(R"({"seeks": [{"firstSector": 128}]})");
    EXPECT_EQ(read(source, kBlock), TransferOutcome::kNotReached);
    EXPECT_EQ(text_, std::string(kBlock, '.'));
    EXPECT_THAT(bench_.log("request=read"), IsEmpty());
}

TEST_F(BlockIo, TheLowPartOfThePositionAloneTellsAFailedSeek) {
    DriveRecord& source = openNoise("{}");
    const ImportPatched patched(
        __imp_SetFilePointer, +[](HANDLE, LONG low, PLONG high, DWORD method) -> DWORD {
            EXPECT_EQ(low, -1);
            EXPECT_EQ(*high, 1);
            EXPECT_EQ(method, static_cast<DWORD>(FILE_BEGIN));
            SetLastError(NO_ERROR); // the position was reached
            return 0xFFFFFFFF;
        });
    EXPECT_EQ(read(source, 0x1FFFFFFFF), TransferOutcome::kNotReached);
    EXPECT_EQ(write(source, 0x1FFFFFFFF), TransferOutcome::kNotReached);
}

TEST_F(BlockIo, WritesTheWholeBuffer) {
    DriveRecord& destination = openDrive();
    text_ = noise(1, 0, kBlock);
    EXPECT_EQ(write(destination, 5ULL << 30), TransferOutcome::kWhole);
    EXPECT_TRUE(content(1, 5ULL << 30, kBlock) == text_);
}

TEST_F(BlockIo, AWriteThatTheDriveFailsIsSilent) {
    DriveRecord& destination = openDrive(R"(, "faults": {"writes": [{"firstSector": 3}]})");
    EXPECT_EQ(write(destination, 0), TransferOutcome::kFailed);
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(BlockIo, TheSystemIsAskedWhyAWriteFailed) {
    DriveRecord& destination = openDrive(R"(, "faults": {"writes": [{"firstSector": 3}]})");
    static int asked = 0;
    asked = 0;
    const ImportPatched patched(
        __imp_FormatMessageA, +[](DWORD, LPCVOID, DWORD, DWORD, LPSTR, DWORD, va_list*) -> DWORD {
            ++asked;
            return 0;
        });
    EXPECT_EQ(write(destination, kBlock), TransferOutcome::kWhole);
    EXPECT_EQ(asked, 0);
    EXPECT_EQ(write(destination, 0), TransferOutcome::kFailed);
    EXPECT_EQ(asked, 1);
}

TEST_F(BlockIo, AFailedSeekForWritingWritesNothing) {
    DriveRecord& destination = openDrive(R"(, "faults": {"seeks": [{"firstSector": 0}]})");
    EXPECT_EQ(write(destination, 0), TransferOutcome::kNotReached);
    EXPECT_THAT(bench_.log("request=write"), IsEmpty());
}

TEST_F(BlockIo, BeyondTheDrivesEndReadsAndWritesFail) {
    DriveRecord& disk = openDrive();
    EXPECT_EQ(read(disk, (8ULL << 30) - 512), TransferOutcome::kFailed);
    EXPECT_EQ(write(disk, (8ULL << 30) - 512), TransferOutcome::kFailed);
}

TEST_F(BlockIo, WhatIsNoWholeSectorFails) {
    DriveRecord& disk = openDrive("", 4096);
    text_.resize(512);
    EXPECT_EQ(read(disk, 0), TransferOutcome::kFailed);
    EXPECT_EQ(write(disk, 0), TransferOutcome::kFailed);
}

TEST_F(BlockIo, AnotherThreadOnTheSameHandleMovesNobodysBlock) {
    DriveRecord& disk = openNoise("{}");
    std::atomic<bool> done{false};
    std::thread other([&] {
        std::vector<std::byte> bytes(512);
        while (!done) {
            static_cast<void>(reachAndRead(io_, disk, 6ULL << 30, bytes));
        }
    });
    int wrong = 0;
    text_.resize(512);
    for (std::uint64_t i = 0; i < 500; ++i) {
        static_cast<void>(read(disk, i * 512));
        wrong += text_ == noise(5, i * 512, 512) ? 0 : 1;
    }
    done = true;
    other.join();
    EXPECT_EQ(wrong, 0);
}

TEST(ReportWriteError, IsAlwaysOneAndShowsNothing) {
    testing::RecordingMainView view;
    const testing::ViewInstalled installed(appState(), view);
    SetLastError(ERROR_CRC);
    EXPECT_EQ(ReportWriteError("Write Error"), 1);
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(ReportWriteError("%s %d", "any text", 7), 1);
    EXPECT_THAT(view.logRows(), IsEmpty());
}

TEST(ReportWriteError, AsksForTheLastErrorsText) {
    const ImportPatched patched(
        __imp_FormatMessageA, +[](DWORD flags, LPCVOID, DWORD error, DWORD language, LPSTR, DWORD, va_list*) -> DWORD {
            EXPECT_EQ(flags, static_cast<DWORD>(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS |
                                                FORMAT_MESSAGE_FROM_SYSTEM));
            EXPECT_EQ(error, static_cast<DWORD>(ERROR_WRITE_PROTECT));
            EXPECT_EQ(language, static_cast<DWORD>(MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT)));
            return 0;
        });
    SetLastError(ERROR_WRITE_PROTECT);
    EXPECT_EQ(ReportWriteError("Write Error"), 1);
}

template <typename Digest>
Digest digestOfText(std::unique_ptr<BlockHasher> (*makeHasher)(HasherFailure&), std::string_view text) {
    HasherFailure failure = HasherFailure::kNone;
    const auto hasher = makeHasher(failure);
    EXPECT_TRUE(hasher);
    // In two pieces.
    const auto bytes = std::as_bytes(std::span(text));
    EXPECT_TRUE(hasher->add(bytes.first(bytes.size() / 2)));
    EXPECT_TRUE(hasher->add(bytes.subspan(bytes.size() / 2)));
    return digestOf<Digest>(*hasher).value_or(Digest{});
}

Md5Digest md5Of(std::string_view text) {
    return digestOfText<Md5Digest>(makeMd5Hasher, text);
}

std::string sha256Of(std::string_view text) {
    return hexText(digestOfText<Sha256Digest>(makeSha256Hasher, text));
}

// The test suite of RFC 1321.
TEST(Md5Hasher, GivesTheStandardsDigests) {
    EXPECT_EQ(md5Of(""), (Md5Digest{0xD4, 0x1D, 0x8C, 0xD9, 0x8F, 0x00, 0xB2, 0x04, 0xE9, 0x80, 0x09, 0x98, 0xEC, 0xF8,
                                    0x42, 0x7E}));
    EXPECT_EQ(md5Of("message digest"), (Md5Digest{0xF9, 0x6B, 0x69, 0x7D, 0x7C, 0xB7, 0x93, 0x8D, 0x52, 0x5A, 0x2F,
                                                  0x31, 0xAA, 0xF1, 0x61, 0xD0}));
    EXPECT_EQ(
        md5Of("12345678901234567890123456789012345678901234567890123456789012345678901234567890"),
        (Md5Digest{0x57, 0xED, 0xF4, 0xA2, 0x2B, 0xE3, 0xC9, 0x55, 0xAC, 0x49, 0xDA, 0x2E, 0x21, 0x07, 0xB6, 0x7A}));
}

// Examples of FIPS 180-2, appendix B, and the digest of nothing.
TEST(Sha256Hasher, GivesTheStandardsDigests) {
    EXPECT_EQ(sha256Of(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(sha256Of("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(sha256Of("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(sha256Of(std::string(1000000, 'a')), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

} // namespace
} // namespace torvane
