#include "base/owned_handle.h"
#include "tests/component/copy_bench.h"
#include "tests/component/hard_folder.h"
#include "tests/component/import_patched.h"

// The import slots of the functions that a test replaces. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&ReadFile) __imp_ReadFile;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::noise;
using ::testing::SizeIs;
using testing::writeFile;

class ImageToDrive : public testing::CopyBench {
  protected:
    void openDrive(std::size_t imageBytes, std::size_t driveBytes, const std::string& driveMore = "") {
        writeFile("disk.img", noise(3, 0, imageBytes));
        bench_.addDrive(R"({"number": 2, "bus": "nvme", "size": )" + std::to_string(driveBytes) + driveMore + "}");
        destination_ = &drive(2);
        order_.destination = destination_;
        order_.path = (std::filesystem::current_path() / "disk.img").string();
    }

    static bool arrived(std::size_t from, std::size_t to) {
        return content(2, from, to - from) == noise(3, from, to - from);
    }

    DriveRecord* destination_ = nullptr;
};

TEST_F(ImageToDrive, OntoADiskWithMountedVolumesArrivesWhole) {
    openDrive(5 * kBlock + 1024, 8 * kBlock,
              R"(, "volumes": [{"letter": "K", "extents": [{"offset": 32768, "length": 131072}]}])");
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_TRUE(arrived(0, 5 * kBlock + 1024));
    EXPECT_EQ(content(2, 5 * kBlock + 1024, kBlock), std::string(kBlock, '\0')) << "the rest is left as it was";
    EXPECT_EQ(display_.lastStatus(), " Image To Drive SUCCESSFULLY Completed");
    EXPECT_EQ(state().raceTrack.carX, 760);
    EXPECT_EQ(state().raceTrack.carY, 182);
    EXPECT_EQ(lastDriveStatus(*destination_), "COMPLETED");
}

TEST_F(ImageToDrive, ReadsAnImageInAFolderWithAPathOfAnyLength) {
    openDrive(2 * kBlock, 2 * kBlock);
    const testing::HardFolder folder = testing::HardFolder::withLongPath();
    const std::string image = folder.path() + "\\disk.img";
    ASSERT_TRUE(
        MoveFileExW(L"disk.img", (testing::HardFolder::longForm(folder.widePath()) + L"\\disk.img").c_str(), 0));
    order_.path = image;
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_TRUE(arrived(0, 2 * kBlock));
    keptImages().clear();
}

TEST_F(ImageToDrive, AsTheProgramRunsIt) {
    constexpr std::size_t kBytes = 40 * 1048576;
    openDrive(kBytes, kBytes);
    EXPECT_EQ(run(ImageToDriveWorker), 1U);
    EXPECT_TRUE(arrived(0, kBytes));
    EXPECT_THAT(bench_.log("target=drive:2 request=write"), SizeIs(2));
}

TEST_F(ImageToDrive, KeepsTheImageOpenAndUnchangeableUntilTheProgramEnds) {
    openDrive(2 * kBlock, 2 * kBlock);
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_THAT(keptImages(), SizeIs(1));
    EXPECT_FALSE(UniqueFile(CreateFileA("disk.img", GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                        OPEN_EXISTING, 0, nullptr)));
    EXPECT_EQ(run(runImageToDrive), 1U) << "but it can be copied again";
}

TEST_F(ImageToDrive, AnImageThatCannotBeOpenedIsToldAndLogged) {
    openDrive(kBlock, kBlock);
    const std::string path = std::filesystem::current_path().string() + "\\100%s.img";
    order_.path = path;
    const std::string text = "ImageToDrive: [" + path + "] OPEN_EXISTING FAILED";
    user_.expectStop("***** FATAL SYSTEM ERROR *****", text);
    EXPECT_EQ(run(runImageToDrive), 0U);
    EXPECT_THAT(events(), ElementsAre("ERROR: " + text));
    EXPECT_THAT(view_.driveStatuses(*destination_), ElementsAre("BAD not started"));
    EXPECT_FALSE(state().jobs.active());
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty()) << "nothing was cleaned";
}

constexpr const char* kTooLarge = "***** Image File Too Large *****";
constexpr const char* kTruncate =
    "Image File is LARGER than DESTINATION drive. Do you want to truncate file and continue?";

TEST_F(ImageToDrive, ALargerImageIsCutWhenTheUserWantsIt) {
    openDrive(5 * kBlock, 3 * kBlock + 512);
    user_.expectAskDefaultNo(kTooLarge, kTruncate, true);
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_TRUE(arrived(0, 3 * kBlock + 512));
    EXPECT_EQ(destination_->writeErrorCount, 0U);
}

TEST_F(ImageToDrive, ALargerImageLeavesTheDiskAloneWhenTheUserDoesNot) {
    openDrive(5 * kBlock, 3 * kBlock);
    user_.expectAskDefaultNo(kTooLarge, kTruncate, false);
    EXPECT_EQ(run(runImageToDrive), 0U);
    EXPECT_THAT(bench_.log("request=write"), IsEmpty());
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty());
    EXPECT_THAT(display_.statuses(), IsEmpty());
    EXPECT_THAT(view_.driveStatuses(*destination_), ElementsAre("Idle")) << "and nothing of an earlier job";
}

TEST_F(ImageToDrive, ADriveThatGoesWhileTheQuestionIsOpenIsNotCleaned) {
    openDrive(5 * kBlock, 3 * kBlock);
    user_.expectAskDefaultNo(kTooLarge, kTruncate, true, [this] { bench_.unplug(2); });
    user_.expectStop("***** DRIVE HAS CHANGED *****",
                     "The DESTINATION is not the drive that was loaded any more, or it does not answer. Nothing was "
                     "written. Load the drives again");
    EXPECT_EQ(run(runImageToDrive), 0U);
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty());
    EXPECT_THAT(bench_.log("request=write"), IsEmpty());
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD not started");
    EXPECT_FALSE(state().jobs.active());
}

TEST_F(ImageToDrive, ADriveThatTakesTheNumberWhileTheQuestionIsOpenIsNotCleaned) {
    openDrive(5 * kBlock, 3 * kBlock);
    user_.expectAskDefaultNo(kTooLarge, kTruncate, true, [this] { bench_.swap(2); });
    user_.expectStop("***** DRIVE HAS CHANGED *****",
                     "The DESTINATION is not the drive that was loaded any more, or it does not answer. Nothing was "
                     "written. Load the drives again");
    EXPECT_EQ(run(runImageToDrive), 0U);
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty());
    EXPECT_THAT(bench_.log("request=write"), IsEmpty());
}

TEST_F(ImageToDrive, NobodyMayChangeTheImageMeanwhile) {
    openDrive(3 * kBlock, 3 * kBlock);
    display_.onStatus = [](std::string_view) {
        std::error_code error;
        std::filesystem::resize_file("disk.img", 100, error);
        EXPECT_TRUE(error);
    };
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_TRUE(arrived(0, 3 * kBlock));
}

/// Reads of images end at their third block, after 100 bytes.
class TruncatedImages {
  public:
    TruncatedImages() : patched_(__imp_ReadFile, &read) {
        blocks_ = 0;
        original_ = patched_.original();
    }

  private:
    static BOOL WINAPI read(HANDLE file, LPVOID bytes, DWORD size, LPDWORD count, LPOVERLAPPED overlapped) {
        const bool cut = size >= 512 && ++blocks_ >= 3;
        return original_(file, bytes, cut ? 100 : size, count, overlapped);
    }

    static inline int blocks_ = 0;
    static inline decltype(&ReadFile) original_ = nullptr;
    testing::ImportPatched<decltype(&ReadFile)> patched_;
};

TEST_F(ImageToDrive, AnImageThatEndsTooSoonEndsItWithoutMarkers) {
    openDrive(6 * kBlock, 6 * kBlock);
    {
        const TruncatedImages truncated;
        EXPECT_EQ(run(runImageToDrive), 0U);
    }
    EXPECT_TRUE(arrived(0, 2 * kBlock));
    EXPECT_EQ(content(2, 2 * kBlock, kBlock), std::string(kBlock, '\0'));
    EXPECT_EQ(display_.lastStatus(), "Could not READ FROM SOURCE image. TERMINATING");
    EXPECT_FALSE(state().jobs.active());
    EXPECT_EQ(state().raceTrack.failed, 0);
    EXPECT_THAT(display_.timers(), IsEmpty());
    EXPECT_THAT(keptImages(), IsEmpty());
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD not completed, 1 unreadable block");
    testing::expectNoHandleLost([this] {
        const TruncatedImages truncated;
        EXPECT_EQ(run(runImageToDrive), 0U);
    });
}

TEST_F(ImageToDrive, ARemainderThatEndsTooSoonEndsItToo) {
    openDrive(2 * kBlock + 1024, 6 * kBlock);
    const TruncatedImages truncated;
    EXPECT_EQ(run(runImageToDrive), 0U);
    EXPECT_EQ(content(2, 2 * kBlock, 1024), std::string(1024, '\0'));
    EXPECT_EQ(display_.lastStatus(), "Could not READ FROM SOURCE image. TERMINATING");
}

TEST_F(ImageToDrive, FailedWritesAreOnlyCounted) {
    openDrive(6 * kBlock, 6 * kBlock, R"(, "faults": {"writes": [{"firstSector": 130, "sectors": 200}]})");
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_EQ(destination_->writeErrorCount, 2U);
    EXPECT_TRUE(arrived(3 * kBlock, 6 * kBlock));
    EXPECT_EQ(display_.lastStatus(), " Image To Drive SUCCESSFULLY Completed");
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 2 failed writes");
    EXPECT_THAT(events(), ::testing::IsEmpty());
}

TEST_F(ImageToDrive, ADriveThatVanishesIsCountedToTheEnd) {
    openDrive(6 * kBlock, 6 * kBlock, R"(, "faults": {"vanishAfterRequests": 2})");
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_EQ(destination_->writeErrorCount, 4U);
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 4 failed writes");
}

TEST_F(ImageToDrive, TerminateStopsItAfterTheBlockInFlight) {
    openDrive(8 * kBlock, 8 * kBlock);
    display_.onStatus = [&](std::string_view text) {
        if (text.find("%12") != std::string_view::npos) {
            terminate();
        }
    };
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_TRUE(arrived(0, 3 * kBlock));
    EXPECT_EQ(content(2, 3 * kBlock, kBlock), std::string(kBlock, '\0'));
    EXPECT_EQ(display_.lastStatus(), " Image To Drive Terminated -- Not Completed");
    EXPECT_THAT(display_.timers(), ElementsAre(750));
}

constexpr const char* kNotFilled = "***** LAST SECTOR NOT FILLED *****";

std::string oddImage(const std::string& bytes, const std::string& sector) {
    return "The image is " + bytes + " bytes longer than whole sectors of the DESTINATION, which have " + sector +
           " bytes. The last sector will be filled up with zeros. Do you want to continue?";
}

TEST_F(ImageToDrive, AnImageOfOddSizeArrivesWholeAndItsLastSectorIsFilledWithZeros) {
    constexpr std::size_t kBytes = 20 * 1048576 + 100;
    for (const std::size_t sector : {512U, 4096U}) {
        SCOPED_TRACE(sector);
        const int number = sector == 512 ? 2 : 3;
        bench_.addDrive(R"({"number": )" + std::to_string(number) +
                        R"(, "bus": "nvme", "size": "21 MiB", "sectorSize": )" + std::to_string(sector) + "}");
    }
    writeFile("disk.img", noise(3, 0, kBytes));
    order_.path = (std::filesystem::current_path() / "disk.img").string();
    for (const std::size_t sector : {512U, 4096U}) {
        SCOPED_TRACE(sector);
        const int number = sector == 512 ? 2 : 3;
        order_.destination = &drive(number);
        user_.expectAsk(kNotFilled, oddImage("100", std::to_string(sector)), true);
        EXPECT_EQ(run(ImageToDriveWorker), 1U);
        EXPECT_TRUE(content(number, 0, kBytes) == noise(3, 0, kBytes));
        const std::size_t filled = 20 * 1048576 + sector;
        EXPECT_EQ(content(number, kBytes, filled - kBytes), std::string(filled - kBytes, '\0'));
        const auto writes = bench_.log("target=drive:" + std::to_string(number) + " request=write");
        ASSERT_THAT(writes, SizeIs(1)) << "nothing behind that sector";
        EXPECT_THAT(writes[0], ::testing::HasSubstr("offset=0 length=" + std::to_string(filled)));
        EXPECT_EQ(order_.destination->writeErrorCount, 0U);
        EXPECT_EQ(lastDriveStatus(*order_.destination), "COMPLETED");
        EXPECT_EQ(display_.losses(), "Nothing was lost");
    }
}

TEST_F(ImageToDrive, AnImageOfOddSizeLeavesTheDriveAloneWhenTheUserDoesNotWantZeros) {
    openDrive(kBlock + 100, 6 * kBlock);
    user_.expectAsk(kNotFilled, oddImage("100", "512"), false);
    EXPECT_EQ(run(runImageToDrive), 0U);
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty());
    EXPECT_THAT(bench_.log("request=write"), IsEmpty());
    EXPECT_THAT(view_.driveStatuses(*destination_), ElementsAre("Idle"));
}

TEST_F(ImageToDrive, AnEmptyImageCompletesAtOnce) {
    openDrive(0, kBlock);
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_THAT(bench_.log("request=write"), IsEmpty());
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty()) << "a disk that gets nothing is not wiped";
    EXPECT_THAT(display_.statuses(), ElementsAre(" Status: Idle", " Image To Drive SUCCESSFULLY Completed"));
}

TEST_F(ImageToDrive, AskedToStopBeforeItsFlagWasRaisedItTouchesNothing) {
    openDrive(3 * kBlock, 3 * kBlock);
    EXPECT_EQ(runAskedToStop(runImageToDrive), 1U);
    EXPECT_FALSE(state().jobs.active());
    EXPECT_THAT(bench_.log("request=write"), IsEmpty());
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty());
    EXPECT_EQ(display_.lastStatus(), " Image To Drive Terminated -- Not Completed");
}

} // namespace
} // namespace torvane
