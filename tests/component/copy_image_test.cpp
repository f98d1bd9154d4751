#include "base/owned_handle.h"
#include "copy/dialogs/volume_space.h"
#include "discovery/image_file_drive.h"
#include "tests/component/copy_bench.h"
#include "tests/component/hard_folder.h"
#include "tests/component/import_patched.h"
#include "tests/support/direct_waiting.h"

#include <algorithm>

// The import slots of the functions that a test replaces. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&WriteFile) __imp_WriteFile;
extern decltype(&GetDiskFreeSpaceA) __imp_GetDiskFreeSpaceA;
extern decltype(&GetFileAttributesW) __imp_GetFileAttributesW;
extern decltype(&SetThreadExecutionState) __imp_SetThreadExecutionState;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::ImportPatched;
using ::testing::IsEmpty;
using testing::noise;
using testing::readFile;
using testing::unreadable;
using testing::writeFile;

/// A volume with room for so many more bytes in blocks of the images.
class FullVolume {
  public:
    explicit FullVolume(std::size_t room) : patched_(__imp_WriteFile, &write) {
        room_ = room;
        original_ = patched_.original();
    }

  private:
    static BOOL WINAPI write(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD count, LPOVERLAPPED overlapped) {
        if (!testing::isFileOf(file, L".img")) {
            return original_(file, bytes, size, count, overlapped); // not a block: the counter and the like
        }
        const auto fitting = static_cast<DWORD>(std::min<std::size_t>(size, room_));
        room_ -= fitting;
        const BOOL written = original_(file, bytes, fitting, count, overlapped);
        if (fitting < size) {
            SetLastError(ERROR_DISK_FULL);
            return FALSE;
        }
        return written;
    }

    static inline std::size_t room_ = 0;
    static inline decltype(&WriteFile) original_ = nullptr;
    ImportPatched<decltype(&WriteFile)> patched_;
};

class Image : public testing::CopyBench {
  protected:
    void openDrive(std::size_t bytes, const std::string& faults = "{}") {
        bench_.addDrive(R"({"number": 1, "bus": "nvme", "backing": {"pattern": "noise", "seed": 7},
                            "identity": {"product": "Model X", "serial": "S1"}, "size": )" +
                        std::to_string(bytes) + R"(, "faults": )" + faults + "}");
        source_ = &drive(1);
        order_.source = source_;
        writeFile("FileCounter.txt", std::string("\x28\0\0\0", 4));
    }

    static constexpr const char* kImage = "Model X.41.img";

    DriveRecord* source_ = nullptr;
};

TEST_F(Image, HoldsTheDrivesBytesAndNothingElse) {
    openDrive(5 * kBlock + 1536);
    EXPECT_EQ(run(runImageToFile), 1U);
    EXPECT_TRUE(readFile(kImage) == noise(7, 0, 5 * kBlock + 1536));
    EXPECT_THAT(display_.statuses(),
                ElementsAre(" Status: Idle", HasSubstr(" -- %0"), HasSubstr(" -- %20"), HasSubstr(" -- %40"),
                            HasSubstr(" -- %60"), HasSubstr(" -- %80"), " Image  SUCCESSFULLY Completed"));
    EXPECT_EQ(state().raceTrack.succeeded, 1);
    EXPECT_EQ(state().raceTrack.carX, 760);
    EXPECT_EQ(state().raceTrack.carY, 32);
    EXPECT_FALSE(state().jobs.active());
    EXPECT_EQ(lastDriveStatus(*source_), "COMPLETED");
    EXPECT_THAT(bench_.log("request=write"), IsEmpty());
    EXPECT_THAT(display_.imagePlaces(), ElementsAre(order_.path, order_.path + "\\" + kImage));
    EXPECT_THAT(display_.calls(), ElementsAre("good"));
    const std::vector<RunFigures> runs = display_.runs();
    ASSERT_EQ(runs.size(), 7U);
    EXPECT_EQ(runs.front().done, 0U);
    EXPECT_EQ(runs[1].done, kBlock);
    EXPECT_EQ(runs.back().done, 5 * kBlock + 1536);
    EXPECT_EQ(runs.back().total, 5 * kBlock + 1536);
}

TEST_F(Image, AsTheProgramRunsIt) {
    constexpr std::size_t kBytes = 40 * 1048576;
    openDrive(kBytes);
    EXPECT_EQ(run(ImageToFileWorker), 1U);
    EXPECT_TRUE(readFile(kImage) == noise(7, 0, kBytes));
}

TEST_F(Image, GoesToTheFolderThatItWasStartedWith) {
    openDrive(kBlock);
    static HANDLE folderChanged = nullptr;
    static decltype(&SetThreadExecutionState) original = nullptr;
    const UniqueHandle changed(CreateEventA(nullptr, TRUE, FALSE, nullptr));
    folderChanged = changed.get();
    original = __imp_SetThreadExecutionState;
    // The first thing that a job's thread does.
    const ImportPatched patched(
        __imp_SetThreadExecutionState, +[](EXECUTION_STATE wanted) -> EXECUTION_STATE {
            EXPECT_EQ(WaitForSingleObject(folderChanged, 60000), WAIT_OBJECT_0);
            return original(wanted);
        });
    ASSERT_TRUE(start(CopyKind::kImageToFile));
    order_.path = "another folder";
    SetEvent(folderChanged);
    ASSERT_TRUE(awaitEnd());
    EXPECT_TRUE(readFile(kImage) == noise(7, 0, kBlock));
}

TEST_F(Image, TakesTheFirstNumberThatNeitherAnImageNorAHashFileHas) {
    openDrive(kBlock);
    writeFile(kImage, "an old image");
    writeFile("MD5-HASH--Model X.42.txt", "an old hash");
    EXPECT_EQ(run(runImageToFile), 1U);
    EXPECT_TRUE(readFile("Model X.43.img") == noise(7, 0, kBlock));
    EXPECT_EQ(readFile(kImage), "an old image");
    EXPECT_EQ(readFile("MD5-HASH--Model X.42.txt"), "an old hash");
    EXPECT_FALSE(std::filesystem::exists("Model X.42.img"));
    EXPECT_EQ(readFile("FileCounter.txt"), std::string("\x2B\0\0\0", 4)) << "each number that was tried is used up";
}

TEST_F(Image, BehindTheLargestNumberFindsAFreeOne) {
    openDrive(kBlock);
    writeFile("FileCounter.txt", "\xFF\xFF\xFF\x7F");
    writeFile("Model X.2147483647.img", "an old image");
    EXPECT_EQ(run(runImageToFile), 1U);
    EXPECT_TRUE(readFile("Model X.2147483646.img") == noise(7, 0, kBlock));
    EXPECT_EQ(readFile("Model X.2147483647.img"), "an old image");
}

TEST_F(Image, OfNoNameIsNotTriedForEver) {
    openDrive(kBlock);
    // Whatever is asked for exists.
    const ImportPatched patched(
        __imp_GetFileAttributesW, +[](LPCWSTR) -> DWORD { return FILE_ATTRIBUTE_NORMAL; });
    EXPECT_EQ(run(runImageToFile), 0U);
    EXPECT_EQ(display_.lastStatus(), "Could not CREATE DESTINATION image");
    EXPECT_THAT(events(), ElementsAre(HasSubstr("ERROR: No image number is free after [")));
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not started");
}

TEST_F(Image, OthersMayReadItMeanwhile) {
    openDrive(3 * kBlock);
    bool opened = false;
    display_.onStatus = [&](std::string_view) {
        opened = static_cast<bool>(UniqueFile(
            CreateFileA(kImage, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr)));
        display_.onStatus = {};
    };
    run(runImageToFile);
    EXPECT_TRUE(opened);
}

TEST_F(Image, UnreadableBlocksAreMarkedAndTheEleventhEndsIt) {
    std::string reads;
    for (int i = 0; i < 11; ++i) {
        reads += (i == 0 ? "" : ", ") + (R"({"firstSector": )" + std::to_string(i * 128) + "}");
    }
    openDrive(20 * kBlock, R"({"reads": [)" + reads + "]}");
    EXPECT_EQ(run(runImageToFile), 1U);
    EXPECT_TRUE(readFile(kImage) == unreadable(11 * kBlock));
    EXPECT_EQ(display_.lastStatus(), " Image Terminated -- Not Completed");
    EXPECT_THAT(display_.timers(), ElementsAre(750, 750));
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not completed, 11 unreadable blocks");
}

TEST_F(Image, TerminateLeavesAPartialImage) {
    openDrive(20 * kBlock);
    display_.onStatus = [&](std::string_view text) {
        if (text.find("%10") != std::string_view::npos) {
            terminate();
        }
    };
    EXPECT_EQ(run(runImageToFile), 1U);
    EXPECT_TRUE(readFile(kImage) == noise(7, 0, 4 * kBlock));
    EXPECT_EQ(display_.lastStatus(), " Image Terminated -- Not Completed");
}

// Of less than a block too: there the remainder alone would be skipped, and the image would count as complete.
TEST_F(Image, AskedToStopBeforeItsFlagWasRaisedStaysEmptyAndIsTerminated) {
    openDrive(1024);
    EXPECT_EQ(runAskedToStop(runImageToFile), 1U);
    EXPECT_EQ(readFile(kImage), "");
    EXPECT_EQ(display_.lastStatus(), " Image Terminated -- Not Completed");
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not completed");
    EXPECT_THAT(bench_.log("target=drive:1 request=read"), IsEmpty());
}

TEST_F(Image, OfADriveThatWasUnpluggedIsNotBegun) {
    openDrive(kBlock);
    bench_.unplug(1);
    for (const auto job : {runImageToFile, runForensicImage}) {
        user_.expectStop("***** DRIVE HAS CHANGED *****",
                         "The SOURCE is not the drive that was loaded any more, or it does not answer. Nothing was "
                         "written. Load the drives again");
        EXPECT_EQ(run(job), 0U);
        EXPECT_EQ(lastDriveStatus(*source_), "BAD not started");
    }
    EXPECT_FALSE(std::filesystem::exists(kImage));
    EXPECT_EQ(readFile("FileCounter.txt"), std::string("\x28\0\0\0", 4)) << "no number was used up";
}

TEST_F(Image, ThatCannotBeCreatedChangesNoFlag) {
    openDrive(kBlock);
    std::filesystem::create_directory(kImage);
    EXPECT_EQ(run(runImageToFile), 0U);
    EXPECT_THAT(display_.statuses(), ElementsAre("Could not CREATE DESTINATION image"));
    EXPECT_THAT(view_.driveStatuses(*source_), ElementsAre("BAD not started"));
    EXPECT_FALSE(state().jobs.active());
    EXPECT_THAT(bench_.log("request=read"), IsEmpty());
    EXPECT_EQ(readFile("FileCounter.txt"), std::string("\x29\0\0\0", 4)) << "the counter has moved on all the same";
}

TEST_F(Image, OnAFullVolumeStaysPartialAndTheRunningFlagSet) {
    openDrive(5 * kBlock);
    {
        const FullVolume full(2 * kBlock + 1000);
        EXPECT_EQ(run(runImageToFile), 0U);
    }
    EXPECT_TRUE(readFile(kImage) == noise(7, 0, 2 * kBlock + 1000));
    EXPECT_EQ(display_.lastStatus(), "Could not WRITE to DESTINATION image");
    EXPECT_TRUE(state().jobs.active());
    EXPECT_EQ(state().raceTrack.failed, 0);
    EXPECT_THAT(display_.timers(), IsEmpty());
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not completed, 1 failed write");
    testing::expectNoHandleLost([this] {
        const FullVolume full(2 * kBlock + 1000);
        EXPECT_EQ(run(runImageToFile), 0U);
    });
}

TEST_F(Image, OnAFullVolumeTheSystemMaySleepAgain) {
    openDrive(kBlock);
    const FullVolume full(0);
    EXPECT_EQ(run(ImageToFileWorker), 0U);
    EXPECT_EQ(SetThreadExecutionState(ES_SYSTEM_REQUIRED), static_cast<EXECUTION_STATE>(ES_CONTINUOUS));
}

TEST_F(Image, OfAnImageFileThatWasTruncatedMeanwhileKeepsTheTailOfTheMarkedBlock) {
    const std::string content = noise(9, 0, 2 * kBlock + 18);
    writeFile("old.img", content);
    const DriveRecordPtr record = openImageFileAsDrive("old.img");
    ASSERT_TRUE(record);
    record->sizeBytes = 2 * kBlock + 21; // as it was when it was opened
    order_.source = record.get();
    writeFile("FileCounter.txt", std::string("\x28\0\0\0", 4));
    EXPECT_EQ(run(runImageToFile), 1U);
    // Bytes 16 and 17 came with the short read, 18 to 20 are left of the block before.
    EXPECT_TRUE(readFile("old.img.41.img") == content.substr(0, 2 * kBlock) + unreadable(16) +
                                                  content.substr(2 * kBlock + 16, 2) + content.substr(kBlock + 18, 3));
    EXPECT_THAT(events(), ElementsAre("ERROR: BAD READ BLOCK AT SECTOR: [256]"));
    EXPECT_EQ(display_.lastStatus(), " Image  SUCCESSFULLY Completed");
}

TEST_F(Image, WithoutMemoryForTheBuffersIsLogged) {
    openDrive(kBlock);
    EXPECT_EQ(run(runImageToFile, kTooMuchMemory), 0U);
    EXPECT_THAT(events(), ElementsAre("ERROR: Could not ALLOCATE copy buffers"));
    EXPECT_THAT(view_.driveStatuses(*source_), ElementsAre("BAD not started"));
    EXPECT_FALSE(state().jobs.active());
}

TEST_F(Image, LeavesNoHandleBehind) {
    openDrive(3 * kBlock);
    testing::expectNoHandleLost([this] { run(runImageToFile); });
}

TEST(FreeSpaceOfFolder, AsksForTheVolumeByItsFirstTwoCharacters) {
    static std::string asked;
    const ImportPatched patched(
        __imp_GetDiskFreeSpaceA,
        +[](LPCSTR root, LPDWORD sectorsPerCluster, LPDWORD bytesPerSector, LPDWORD freeClusters, LPDWORD) -> BOOL {
            asked = root;
            *sectorsPerCluster = 8;
            *bytesPerSector = 512;
            *freeClusters = 4000000000;
            return TRUE;
        });
    EXPECT_EQ(volumeOfFolder("E:\\Images\\a").freeBytes, 16384000000000);
    EXPECT_EQ(asked, "E:");
}

TEST(VolumeOfFolder, IsNotToldOfWhatIsNowhere) {
    for (const char* nowhere : {"\\\\server\\share", ""}) {
        const DestinationVolume volume = volumeOfFolder(nowhere);
        EXPECT_TRUE(volume.isThere);
        EXPECT_EQ(volume.freeBytes, std::nullopt);
        EXPECT_EQ(volume.fileSystem, "");
    }
}

TEST(VolumeOfFolder, OfAShareIsAskedByTheFolderItself) {
    testing::TestBench bench;
    bench.describe(R"({"shares": [{"name": "\\\\server\\share", "freeSpace": "10 GiB", "fileSystem": "FAT32"}]})");
    bench.open();
    for (const char* folder : {"\\\\server\\share", "\\\\server\\share\\", "\\\\server\\share\\images"}) {
        const DestinationVolume volume = volumeOfFolder(folder);
        EXPECT_EQ(volume.freeBytes, 10LL << 30) << folder;
        EXPECT_EQ(volume.fileSystem, "FAT32") << folder;
    }
    const std::string longFolder = "\\\\server\\share\\" + std::string(300, 'n');
    EXPECT_EQ(volumeOfFolder(longFolder).freeBytes, 10LL << 30);
}

TEST(VolumeOfFolder, OfALetterIsTheLetters) {
    testing::TestBench bench;
    bench.addDrive(R"({"number": 2, "bus": "usb", "size": "64 MiB", "volumes": [{"letter": "K", "fileSystem": "FAT32",
        "freeSpace": "5 MiB", "extents": [{"offset": "1 MiB", "length": "32 MiB"}]}]})");
    bench.open();
    const DestinationVolume volume = volumeOfFolder("K:\\images");
    EXPECT_TRUE(volume.isThere);
    EXPECT_EQ(volume.freeBytes, 5LL << 20);
    EXPECT_EQ(volume.fileSystem, "FAT32");
}

TEST(VolumeOfFolder, OfALetterThatDoesNotTellItsRoomHasNone) {
    testing::TestBench bench;
    bench.addDrive(R"({"number": 2, "bus": "usb", "size": "64 MiB",
        "volumes": [{"letter": "K", "extents": [{"offset": "1 MiB", "length": "32 MiB"}]}]})");
    bench.open();
    const DestinationVolume volume = volumeOfFolder("K:\\images");
    EXPECT_TRUE(volume.isThere);
    EXPECT_EQ(volume.freeBytes, 0) << "an empty reader's slot";
}

TEST(VolumeOfFolder, OfALetterThatTheUserAloneHasIsNotThere) {
    testing::TestBench bench;
    bench.open();
    const DestinationVolume volume = volumeOfFolder("Q:\\images");
    EXPECT_FALSE(volume.isThere) << "a share that Windows has mapped for the user who is not elevated";
    EXPECT_EQ(volume.freeBytes, std::nullopt);
}

TEST(VolumeOfFolder, IsAwaitedOrLeft) {
    testing::TestBench bench;
    bench.describe(R"({"shares": [{"name": "\\\\server\\share", "freeSpace": "10 GiB", "fileSystem": "FAT32"}]})");
    bench.open();
    EXPECT_EQ(awaitVolumeOfFolder("\\\\server\\share")->freeBytes, 10LL << 30);
    const testing::LeftWaits left;
    EXPECT_FALSE(awaitVolumeOfFolder("\\\\server\\share").has_value());
}

TEST_F(Image, IsMadeInAFolderWithAPathOfAnyLength) {
    openDrive(3 * kBlock + 512);
    const testing::HardFolder folder = testing::HardFolder::withLongPath();
    order_.path = folder.path();
    EXPECT_EQ(run(runImageToFile), 1U);
    EXPECT_EQ(display_.lastStatus(), " Image  SUCCESSFULLY Completed");
    EXPECT_TRUE(folder.content(L"Model X.41.img") == noise(7, 0, 3 * kBlock + 512));
    EXPECT_THAT(folder.files(), ::testing::UnorderedElementsAre(L"Model X.41.img", L"Model X.41.img.map",
                                                                L"ACQUISITION--Model X.41.txt"));
}

TEST_F(Image, IsMadeInAFolderWithAForeignName) {
    openDrive(2 * kBlock);
    const testing::HardFolder folder = testing::HardFolder::withForeignName();
    const testing::TextsAreUtf8 utf8;
    order_.path = folder.path();
    EXPECT_EQ(run(runImageToFile), 1U);
    EXPECT_TRUE(folder.content(L"Model X.41.img") == noise(7, 0, 2 * kBlock));
}

/// The bench's description of the letter under which the test's folder lies.
std::string currentLetterWith(const std::string& fields) {
    return std::string(R"({"volumes": [{"letter": ")") + std::filesystem::current_path().string().front() + R"(", )" +
           fields + "}]}";
}

TEST_F(Image, OnAFat32VolumeEndsAtTheLargestFileAsWithAnyFailedWrite) {
    bench_.describe(currentLetterWith(R"("fileSystem": "FAT32", "largestFile": )" + std::to_string(3 * kBlock - 1)));
    openDrive(5 * kBlock);
    EXPECT_EQ(run(runImageToFile), 0U);
    EXPECT_EQ(display_.lastStatus(), "Could not WRITE to DESTINATION image");
    EXPECT_TRUE(readFile(kImage) == noise(7, 0, 2 * kBlock)) << "nothing of the block that reaches over the end";
    EXPECT_THAT(bench_.log("request=write result=ERROR_DISK_FULL"), ::testing::SizeIs(1));
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not completed, 1 failed write");
}

} // namespace
} // namespace torvane
