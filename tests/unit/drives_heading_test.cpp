#include "window/drives_heading.h"

#include "records/drive_record.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

TEST(DrivesHeadingTest, TellsWhatAScanHasFound) {
    DrivesKnown known;
    EXPECT_EQ(drivesHeading(known), "&Attached drives");
    known.found = DrivesFound{.shown = 12, .notShown = 2};
    EXPECT_EQ(drivesHeading(known), "&Attached: 12 drives, 2 not shown: see log");
    known.found = DrivesFound{.shown = 1, .notShown = 0};
    EXPECT_EQ(drivesHeading(known), "&Attached: 1 drive");
}

TEST(DrivesHeadingTest, TellsThatItIsOutOfDate) {
    DrivesKnown known;
    known.haveChanged = true;
    EXPECT_EQ(drivesHeading(known), "&Attached drives") << "there is nothing that could be";
    known.found = DrivesFound{.shown = 0, .notShown = 1};
    EXPECT_EQ(drivesHeading(known), "&Attached: 0 drives, 1 not shown: see log. Drives have changed: Load Drives");
}

TEST(DrivesHeadingTest, TellsThatAReportNamesNobody) {
    DrivesKnown known{.found = DrivesFound{.shown = 2, .notShown = 0}, .reportNamesNobody = true};
    EXPECT_EQ(drivesHeading(known), "&Attached: 2 drives. The report names no company: see \"Company Information\"");
}

TEST(DrivesHeadingTest, NamesTheDriveThatTheDialsAreOf) {
    DriveRecord drive;
    drive.recordKind = kRecordKindPhysicalDrive;
    drive.driveNumber = 3;
    drive.model.assign("Tarn S2000");
    drive.serialNumber.assign("TS-77");
    EXPECT_EQ(activeDriveText(drive), "Active: Drive 3 - Tarn S2000 - TS-77");
}

TEST(DrivesHeadingTest, AnEmptyListSaysWhatToDo) {
    DrivesKnown known;
    EXPECT_EQ(emptyListText(known), "Press Load Drives");
    known.isScanning = true;
    EXPECT_EQ(emptyListText(known), "");
    known = {.found = DrivesFound{}};
    EXPECT_EQ(emptyListText(known), "No drives were found");
}

} // namespace
} // namespace torvane
