#include "tests/component/copy_bench.h"
#include "tests/component/import_patched.h"

#include <atomic>

// The import slots of the functions that a test replaces. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&FlushFileBuffers) __imp_FlushFileBuffers;
extern decltype(&CreateFileW) __imp_CreateFileW;
extern decltype(&ReadFile) __imp_ReadFile;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane {
namespace {

using ::testing::Each;
using ::testing::Field;
using testing::ImportPatched;
using ::testing::IsEmpty;
using testing::noise;
using testing::readFile;
using ::testing::SizeIs;
using testing::writeFile;

// --- destinations that are drives ---

class FlushedClone : public testing::CopyBench {
  protected:
    void openDrives(std::size_t bytes, const std::string& destinationFaults) {
        const std::string size = R"(, "size": )" + std::to_string(bytes);
        bench_.addDrive(R"({"number": 1, "bus": "sata", "backing": {"pattern": "noise", "seed": 7})" + size + "}");
        bench_.addDrive(R"({"number": 2, "bus": "usb")" + size + R"(, "faults": )" + destinationFaults + "}");
        order_.source = &drive(1);
        destination_ = &drive(2);
        order_.destination = destination_;
    }

    DriveRecord* destination_ = nullptr;
};

TEST_F(FlushedClone, IsOnTheMediumWhenItIsCompleted) {
    openDrives(9 * kBlock + 512, R"({"volatileCache": true})");
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(lastDriveStatus(*destination_), "COMPLETED");
    bench_.unplug(2);
    EXPECT_TRUE(content(2, 0, 9 * kBlock + 512) == noise(7, 0, 9 * kBlock + 512));
    EXPECT_THAT(bench_.log("target=drive:2 request=flush result=ok"), SizeIs(3)) << "two on the way, one at the end";
}

TEST_F(FlushedClone, InReverseIsOnTheMediumWhenItIsCompleted) {
    openDrives(2 * kBlock + 512, R"({"volatileCache": true})");
    EXPECT_EQ(run(runReverseClone), 1U);
    EXPECT_EQ(lastDriveStatus(*destination_), "COMPLETED");
    bench_.unplug(2);
    EXPECT_TRUE(content(2, 0, 2 * kBlock + 512) == noise(7, 0, 2 * kBlock + 512));
}

TEST_F(FlushedClone, IsToldAsAFailedWriteWhenTheLastFlushFails) {
    openDrives(2 * kBlock, R"({"flush": "ERROR_IO_DEVICE"})");
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 1 failed write");
    EXPECT_EQ(destination_->writeErrorCount, 1U);
}

TEST_F(FlushedClone, IsToldAsAFailedWriteWhenAFlushOnTheWayFails) {
    openDrives(9 * kBlock, R"({"flush": {"error": "ERROR_CRC", "times": 1}})");
    EXPECT_EQ(run(runReverseClone), 1U);
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 1 failed write");
    EXPECT_EQ(destination_->writeErrorCount, 1U);
}

TEST_F(FlushedClone, ToADriveThatIsUnpluggedBeforeTheLastFlushIsNotCompleted) {
    openDrives(2 * kBlock, R"({"volatileCache": true})");
    display_.onStatus = [&](std::string_view text) {
        if (text.find("%50") != std::string_view::npos) { // both blocks are written
            bench_.unplug(2);
        }
    };
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 1 failed write");
    EXPECT_TRUE(content(2, 0, 2 * kBlock) == std::string(2 * kBlock, '\0')) << "all of it was in the cache";
}

TEST_F(FlushedClone, ToADriveThatKnowsNoFlushIsCompleted) {
    openDrives(5 * kBlock, R"({"flush": "ERROR_NOT_SUPPORTED"})");
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(lastDriveStatus(*destination_), "COMPLETED");
    EXPECT_EQ(destination_->writeErrorCount, 0U);
}

TEST_F(FlushedClone, OfAnImageIsOnTheMediumWhenItIsCompleted) {
    openDrives(3 * kBlock, R"({"volatileCache": true})");
    writeFile("disk.img", noise(3, 0, 2 * kBlock + 512));
    order_.path = "disk.img";
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_EQ(lastDriveStatus(*destination_), "COMPLETED");
    bench_.unplug(2);
    EXPECT_TRUE(content(2, 0, 2 * kBlock + 512) == noise(3, 0, 2 * kBlock + 512));
}

TEST_F(FlushedClone, OfAnImageIsToldAsAFailedWriteWhenTheFlushFails) {
    openDrives(3 * kBlock, R"({"flush": "ERROR_IO_DEVICE"})");
    writeFile("disk.img", noise(3, 0, 2 * kBlock));
    order_.path = "disk.img";
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 1 failed write");
}

// --- destinations that are files ---

/// Flushes of images that fail once so many have succeeded, with `flushError`; of other files they succeed.
std::atomic<int> flushesToPass{0};
std::atomic<int> flushesAsked{0};
std::atomic<DWORD> flushError{ERROR_IO_DEVICE};

BOOL WINAPI failFlush(HANDLE file) {
    if (!testing::isFileOf(file, L".img") || flushesAsked++ < flushesToPass) {
        return TRUE;
    }
    SetLastError(flushError);
    return FALSE;
}

class FailingFlush {
  public:
    explicit FailingFlush(int pass = 0, DWORD error = ERROR_IO_DEVICE) {
        flushesToPass = pass;
        flushesAsked = 0;
        flushError = error;
    }

  private:
    ImportPatched<decltype(&FlushFileBuffers)> patched_{__imp_FlushFileBuffers, &failFlush};
};

class FlushedImage : public testing::CopyBench {
  protected:
    void openDrive(std::size_t bytes) {
        bench_.addDrive(R"({"number": 1, "bus": "nvme", "backing": {"pattern": "noise", "seed": 7},
                            "identity": {"product": "Model X", "serial": "S1"}, "size": )" +
                        std::to_string(bytes) + "}");
        source_ = &drive(1);
        order_.source = source_;
        writeFile("FileCounter.txt", std::string("\x28\0\0\0", 4));
    }

    void verify(bool equal) {
        user_.expectAsk("****** VERIFY HASH ******", "Would you like to Verify the Image HASH?", true);
        if (equal) {
            user_.expectInform("****** VERIFY SUCCEEDED ******", "CREATED File has been verified");
        } else {
            user_.expectInform("****** VERIFY FAILED ******", "CREATED File has NOT been verified");
        }
        EXPECT_EQ(run(runForensicImage), 1U);
        EXPECT_EQ(lastDriveStatus(*source_), equal ? "COMPLETED, verified" : "BAD not verified");
    }

    static constexpr const char* kImage = "Model X.41.img";
    static constexpr const char* kHashFile = "MD5-HASH--Model X.41.txt";

    DriveRecord* source_ = nullptr;
};

std::atomic<int> realFlushes{0};

TEST_F(FlushedImage, IsFlushedOnTheWayAndAtTheEnd) {
    openDrive(9 * kBlock + 512);
    {
        realFlushes = 0;
        static decltype(&FlushFileBuffers) system = nullptr;
        const ImportPatched<decltype(&FlushFileBuffers)> counted(__imp_FlushFileBuffers, [](HANDLE file) -> BOOL {
            realFlushes += testing::isFileOf(file, L".img") ? 1 : 0;
            return system(file);
        });
        system = counted.original();
        EXPECT_EQ(run(runImageToFile), 1U);
    }
    EXPECT_EQ(realFlushes, 3);
    EXPECT_EQ(lastDriveStatus(*source_), "COMPLETED");
    EXPECT_TRUE(readFile(kImage) == noise(7, 0, 9 * kBlock + 512));
}

TEST_F(FlushedImage, ThatCannotBeFlushedCouldNotBeWritten) {
    openDrive(2 * kBlock);
    {
        const FailingFlush failing;
        EXPECT_EQ(run(runImageToFile), 0U);
    }
    EXPECT_EQ(display_.lastStatus(), "Could not WRITE to DESTINATION image");
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not completed, 1 failed write");
    EXPECT_EQ(state().raceTrack.succeeded, 0);
}

TEST_F(FlushedImage, WhoseFlushOnTheWayFailedCouldNotBeWritten) {
    openDrive(9 * kBlock);
    {
        const FailingFlush failing(1);
        EXPECT_EQ(run(runImageToFile), 0U);
    }
    EXPECT_EQ(display_.lastStatus(), "Could not WRITE to DESTINATION image");
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not completed, 1 failed write");
}

TEST_F(FlushedImage, OnAFileSystemThatKnowsNoFlushIsCompleted) {
    openDrive(2 * kBlock);
    for (const DWORD error : {ERROR_INVALID_FUNCTION, ERROR_NOT_SUPPORTED}) {
        const FailingFlush failing(0, error);
        EXPECT_EQ(run(runImageToFile), 1U);
        EXPECT_EQ(lastDriveStatus(*source_), "COMPLETED");
    }
}

// What a drive's handle may answer that has nothing to flush is a failure of a file that was written to.
TEST_F(FlushedImage, WhoseFileRefusesTheFlushCouldNotBeWritten) {
    openDrive(2 * kBlock);
    for (const DWORD error : {ERROR_INVALID_HANDLE, ERROR_ACCESS_DENIED}) {
        {
            const FailingFlush failing(0, error);
            EXPECT_EQ(run(runImageToFile), 0U);
        }
        EXPECT_EQ(lastDriveStatus(*source_), "BAD not completed, 1 failed write");
    }
}

TEST_F(FlushedImage, ForensicWithoutItsFlushHasNoHashFileAndIsNoSuccess) {
    openDrive(2 * kBlock);
    user_.expectStop("***** IMAGE NOT COMPLETE *****",
                     "Not everything of [" + order_.path + "\\" + kImage +
                         "] could be brought onto the medium. The image is not whole, and it has no hash file. Make it "
                         "anew");
    {
        const FailingFlush failing;
        EXPECT_EQ(run(runForensicImage), 1U);
    }
    EXPECT_EQ(display_.lastStatus(), " Image Terminated -- Not Completed");
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not completed, 1 failed write");
    EXPECT_FALSE(std::filesystem::exists(kHashFile));
    EXPECT_EQ(state().raceTrack.succeeded, 0);
}

// --- verification ---

/// A volume whose medium holds something else than its cache: files that are opened unbuffered come from "medium.img".
struct Medium {
    static inline decltype(&CreateFileW) create = nullptr;
    static inline decltype(&ReadFile) read = nullptr;
    static inline DWORD openError = 0;
    static inline DWORD readError = 0;
    static inline HANDLE handle = nullptr;

    struct Read {
        std::uint64_t offset;
        std::size_t length;
        bool aligned;
    };
    static inline std::vector<Read> reads;

    static HANDLE WINAPI createFile(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                                    DWORD disposition, DWORD flags, HANDLE likeFile) {
        if ((flags & FILE_FLAG_NO_BUFFERING) == 0) {
            return create(path, access, share, security, disposition, flags, likeFile);
        }
        if (openError != 0) {
            SetLastError(openError);
            return INVALID_HANDLE_VALUE; // NOLINT(performance-no-int-to-ptr): the system's own value
        }
        handle = create(L"medium.img", access, share, security, disposition, flags, likeFile);
        return handle;
    }

    static BOOL WINAPI readFile(HANDLE file, LPVOID buffer, DWORD length, LPDWORD bytes, LPOVERLAPPED place) {
        if (file != handle) {
            return read(file, buffer, length, bytes, place);
        }
        const std::uint64_t offset = place->Offset | (std::uint64_t{place->OffsetHigh} << 32);
        const auto address = reinterpret_cast<std::uintptr_t>(buffer);
        reads.push_back({.offset = offset,
                         .length = length,
                         .aligned = offset % 4096 == 0 && length % 4096 == 0 && address % 4096 == 0});
        if (readError != 0) {
            SetLastError(readError);
            return FALSE;
        }
        return read(file, buffer, length, bytes, place);
    }
};

/// Volumes are so as long as this lives.
class SplitVolume {
  public:
    explicit SplitVolume(const std::string& medium) {
        writeFile("medium.img", medium);
        Medium::create = opening_.original();
        Medium::read = reading_.original();
    }

  private:
    ImportPatched<decltype(&CreateFileW)> opening_{__imp_CreateFileW, &Medium::createFile};
    ImportPatched<decltype(&ReadFile)> reading_{__imp_ReadFile, &Medium::readFile};
};

class FromTheMedium : public FlushedImage {
  protected:
    FromTheMedium() {
        Medium::openError = Medium::readError = 0;
        Medium::handle = nullptr;
        Medium::reads.clear();
    }

    /// Verifies an image of so many bytes whose medium holds `medium`.
    void verifyOn(const std::string& medium, std::size_t bytes, bool equal) {
        openDrive(bytes);
        const SplitVolume volume(medium);
        verify(equal);
    }

    static std::string corrupted(std::string content, std::size_t place) {
        content[place] = static_cast<char>(content[place] ^ 1);
        return content;
    }
};

TEST_F(FromTheMedium, AnImageThatIsWrongThereAndRightInTheCacheIsNotVerified) {
    constexpr std::size_t kBytes = 3 * kBlock;
    verifyOn(corrupted(noise(7, 0, kBytes), kBytes - 1), kBytes, false);
    EXPECT_TRUE(readFile(kImage) == noise(7, 0, kBytes)) << "what the cache holds";
}

TEST_F(FromTheMedium, WholeSectorsAreReadAndTheTailApart) {
    constexpr std::size_t kBytes = 2 * kBlock + 3 * 4096 + 512;
    verifyOn(noise(7, 0, kBytes), kBytes, true);
    EXPECT_THAT(Medium::reads, SizeIs(3));
    EXPECT_THAT(Medium::reads, Each(Field(&Medium::Read::aligned, true)));
    EXPECT_EQ(Medium::reads.back().offset, 2 * kBlock);
    EXPECT_EQ(Medium::reads.back().length, 3U * 4096);
}

TEST_F(FromTheMedium, AnImageOfLessThanASectorIsVerified) {
    verifyOn("", 512, true);
    EXPECT_THAT(Medium::reads, IsEmpty());
}

TEST_F(FromTheMedium, AMediumThatCannotBeReadIsNotTakenFromTheCache) {
    Medium::readError = ERROR_CRC;
    openDrive(2 * kBlock);
    const SplitVolume volume(noise(7, 0, 2 * kBlock));
    user_.expectAsk("****** VERIFY HASH ******", "Would you like to Verify the Image HASH?", true);
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_EQ(display_.lastStatus(), "Could not READ image for VERIFICATION");
    EXPECT_EQ(lastDriveStatus(*source_), "BAD verification failed");
}

TEST_F(FromTheMedium, WhereUnbufferedReadingIsUnknownTheOrdinaryOneVerifies) {
    Medium::openError = ERROR_INVALID_PARAMETER;
    verifyOn("", 2 * kBlock + 512, true);
}

TEST_F(FromTheMedium, WhereSectorsAreLargerThanToldTheOrdinaryOneVerifies) {
    Medium::readError = ERROR_INVALID_PARAMETER;
    verifyOn("", 2 * kBlock + 512, true);
    EXPECT_THAT(Medium::reads, SizeIs(1)) << "it is asked once";
}

} // namespace
} // namespace torvane
