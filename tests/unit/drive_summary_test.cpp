#include "discovery/drive_summary.h"

#include "discovery/volume_table.h"
#include "records/drive_record.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

class DriveSummary : public ::testing::Test {
  protected:
    DriveSummary() {
        resetVolumeTable(volumes_);
        drive_.recordKind = kRecordKindPhysicalDrive;
        drive_.driveNumber = 3;
        drive_.model.assign("Tarn S2000");
        drive_.serialNumber.assign("TS-77");
        drive_.sizeGigabytes = 1863.02;
    }
    void addVolume(char letter, std::uint32_t disk) {
        const VolumeExtent extent{.diskNumber = disk, .startingOffset = 0, .length = 4096};
        appendVolume(volumes_, letter, {&extent, 1});
    }

    DriveRecord drive_;
    VolumeTable volumes_;
};

TEST_F(DriveSummary, TellsNumberModelSerialNumberSizeAndLetters) {
    EXPECT_EQ(driveSummary(drive_, volumes_), "Drive 3 - Tarn S2000 - TS-77 - 1863.02 GB - no drive letters");
    addVolume('K', 3);
    addVolume('L', 4);
    addVolume('M', 3);
    EXPECT_EQ(driveSummary(drive_, volumes_), "Drive 3 - Tarn S2000 - TS-77 - 1863.02 GB - K: M:");
    EXPECT_EQ(driveNumberText(drive_), "3");
    EXPECT_EQ(volumeLettersText(drive_, volumes_), "K: M:");
}

TEST_F(DriveSummary, TellsTheSerialNumberThatIsPrintedOnTheDriveWhereItIsAnother) {
    drive_.printed = {.serialNumber = "TS-77", .model = "Tarn S2000", .firmware = "1"};
    EXPECT_EQ(driveSummary(drive_, volumes_), "Drive 3 - Tarn S2000 - TS-77 - 1863.02 GB - no drive letters");
    drive_.serialNumber.assign("0225_38A1_B2C3_D4E5.");
    EXPECT_EQ(driveSummary(drive_, volumes_),
              "Drive 3 - Tarn S2000 - 0225_38A1_B2C3_D4E5. - 1863.02 GB - no drive letters"
              " - printed: serial number TS-77, firmware 1");
}

TEST_F(DriveSummary, DrivesThatAreAlikeDiffer) {
    const std::string other = driveSummary(drive_, volumes_);
    drive_.driveNumber = 4;
    EXPECT_NE(driveSummary(drive_, volumes_), other);
}

TEST_F(DriveSummary, AnImageFileHasNoNumberAndNoLetters) {
    drive_.recordKind = kRecordKindImageFile;
    drive_.driveNumber = 0;
    addVolume('C', 0);
    EXPECT_EQ(driveNumberText(drive_), "");
    EXPECT_EQ(driveSummary(drive_, volumes_), "Image file - Tarn S2000 - TS-77 - 1863.02 GB - no drive letters");
}

} // namespace
} // namespace torvane
