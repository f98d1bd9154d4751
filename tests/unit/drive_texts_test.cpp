#include "records/drive_texts.h"

#include "records/drive_record.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

class PrintedIdentityTextOf : public ::testing::Test {
  protected:
    PrintedIdentityTextOf() {
        drive_.driveNumber = 3;
        drive_.sizeBytes = 4096;
        drive_.model.assign("Tarn N512 ");
        drive_.serialNumber.assign("0225_38A1_B2C3_D4E5.");
        drive_.firmware.assign("HG2A");
    }

    DriveRecord drive_;
};

TEST_F(PrintedIdentityTextOf, ADriveThatToldNothingMoreIsEmpty) {
    EXPECT_EQ(printedIdentityText(drive_), "");
    EXPECT_EQ(jobDriveText(drive_), "disk 003 - Tarn N512  0225_38A1_B2C3_D4E5., 4096 bytes");
}

TEST_F(PrintedIdentityTextOf, ADriveWhoseDescriptorTellsAnEui64HasTheSerialNumberOfItsLabel) {
    drive_.printed = {.serialNumber = "HG51-2290", .model = "Tarn N512", .firmware = "HG2A"};
    EXPECT_EQ(printedIdentityText(drive_), "serial number HG51-2290");
    EXPECT_EQ(jobDriveText(drive_),
              "disk 003 - Tarn N512  0225_38A1_B2C3_D4E5., 4096 bytes, printed: serial number HG51-2290");
}

TEST_F(PrintedIdentityTextOf, AnotherModelAndItsFirmwareAreTold) {
    drive_.printed = {.serialNumber = "HG51-2290", .model = " Tarn N512 Sprint ", .firmware = "HG2A0115"};
    EXPECT_EQ(printedIdentityText(drive_), "serial number HG51-2290, model Tarn N512 Sprint, firmware HG2A0115");
    drive_.printed.serialNumber = "0225_38a1_b2c3_d4e5.";
    EXPECT_EQ(printedIdentityText(drive_), "model Tarn N512 Sprint, firmware HG2A0115") << "one number";
}

TEST_F(PrintedIdentityTextOf, AnotherFirmwareAloneIsNoOtherDrive) {
    drive_.printed = {.serialNumber = "0225_38A1_B2C3_D4E5.", .model = "Tarn N512", .firmware = "HG2A0115"};
    EXPECT_EQ(printedIdentityText(drive_), "");
}

TEST_F(PrintedIdentityTextOf, WhatIsBlankOrNotPrintableWasNotTold) {
    drive_.printed = {.serialNumber = "   ", .model = "Tarn\x01", .firmware = "X"};
    EXPECT_EQ(printedIdentityText(drive_), "");
}

} // namespace
} // namespace torvane
