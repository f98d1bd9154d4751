#include "discovery/image_file_drive.h"

#include "state/app_state.h"
#include "tests/component/scratch_folder.h"
#include "tests/support/recording_main_view.h"
#include "ui/owned.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>

namespace torvane {
namespace {

using ::testing::IsEmpty;

class ImageFileDrive : public ::testing::Test {
  protected:
    [[nodiscard]] std::string folder() const { return folder_.path().string(); }

    testing::ScratchFolder folder_;
    testing::RecordingMainView view_;
    testing::ViewInstalled installed_{appState(), view_};
};

void makeSparseFile(const char* name, std::int64_t size) {
    const UniqueFile file(CreateFileA(name, GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(file);
    LARGE_INTEGER end{};
    end.QuadPart = size;
    ASSERT_TRUE(SetFilePointerEx(file.get(), end, nullptr, FILE_BEGIN));
    ASSERT_TRUE(SetEndOfFile(file.get()));
}

TEST_F(ImageFileDrive, DescribesTheFileAsADrive) {
    makeSparseFile("disk.1.img", 3 * 512 + 100);
    const DriveRecordPtr record = openImageFileAsDrive("disk.1.img");
    ASSERT_TRUE(record);
    EXPECT_EQ(record->imageFilePath.view(), folder() + "\\disk.1.img");
    EXPECT_EQ(record->serialNumber.view(), "FILE: S/N");
    EXPECT_EQ(record->model.view(), "disk.1.img");
    EXPECT_EQ(record->bytesPerSector, 512);
    EXPECT_EQ(record->recordKind, 1002);
    EXPECT_EQ(record->busCode, 2002);
    EXPECT_EQ(record->driveNumber, 0);
    EXPECT_EQ(record->identifyDriveNumber, 0);
    EXPECT_EQ(record->sizeBytes, 3 * 512 + 100);
    EXPECT_EQ(record->sizeSectors, 3);
    EXPECT_DOUBLE_EQ(record->sizeGigabytes, 3 / 2097152.0);
    EXPECT_EQ(record->ssd[Counter::kPendingSectors], 0);
    EXPECT_EQ(record->disk[Counter::kPowerOnHours], -1);
    for (const Counter counter :
         {Counter::kReallocatedSectors, Counter::kReportedUncorrectable, Counter::kReallocationEvents,
          Counter::kPendingSectors, Counter::kOfflineUncorrectable}) {
        EXPECT_EQ(record->disk[counter], 0);
    }
    EXPECT_EQ(record->smartType, 0);
    EXPECT_THAT(view_.logRows(), IsEmpty());
}

TEST_F(ImageFileDrive, TakesTheWholeSixtyFourBitSize) {
    makeSparseFile("large.img", 5LL * 1024 * 1024 * 1024);
    const DriveRecordPtr record = openImageFileAsDrive("large.img");
    ASSERT_TRUE(record);
    EXPECT_EQ(record->sizeBytes, 5LL * 1024 * 1024 * 1024);
    EXPECT_EQ(record->sizeSectors, 10LL * 1024 * 1024);
    EXPECT_DOUBLE_EQ(record->sizeGigabytes, 5.0);
}

TEST_F(ImageFileDrive, ItsHandleReadsTheFileAndCannotWriteIt) {
    testing::writeFile("disk.img", "image");
    const DriveRecordPtr record = openImageFileAsDrive("disk.img");
    ASSERT_TRUE(record);
    std::array<char, 5> bytes{};
    DWORD count = 0;
    EXPECT_TRUE(ReadFile(record->handle, bytes.data(), bytes.size(), &count, nullptr));
    EXPECT_EQ(std::string(bytes.data(), count), "image");
    EXPECT_FALSE(WriteFile(record->handle, bytes.data(), bytes.size(), &count, nullptr));
}

TEST_F(ImageFileDrive, OthersMayReadAndWriteTheFileMeanwhile) {
    testing::writeFile("disk.img", "image");
    const DriveRecordPtr record = openImageFileAsDrive("disk.img");
    ASSERT_TRUE(record);
    const UniqueFile other(CreateFileA("disk.img", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                       nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_TRUE(other);
}

TEST_F(ImageFileDrive, AMissingFileGivesNothingAndLogsNothing) {
    EXPECT_FALSE(openImageFileAsDrive("missing.img"));
    EXPECT_THAT(view_.logRows(), IsEmpty());
}

TEST_F(ImageFileDrive, AFileNameWithPercentSignsIsCopiedAsItStands) {
    testing::writeFile("100%s.img", "x");
    const DriveRecordPtr record = openImageFileAsDrive("100%s.img");
    ASSERT_TRUE(record);
    EXPECT_EQ(record->model.view(), "100%s.img");
    EXPECT_EQ(record->imageFilePath.view(), folder() + "\\100%s.img");
}

TEST_F(ImageFileDrive, TheFileIsClosedWithTheRecord) {
    testing::writeFile("disk.img", "image");
    DriveRecordPtr record = openImageFileAsDrive("disk.img");
    ASSERT_TRUE(record);
    EXPECT_FALSE(DeleteFileA("disk.img"));
    record.reset();
    EXPECT_TRUE(DeleteFileA("disk.img"));
}

} // namespace
} // namespace torvane
