#include "records/drive_record.h"
#include "window/finding_row.h"

#include <gtest/gtest.h>

#include <array>

namespace torvane {
namespace {

DriveRecord driveNamed(const char* model, const char* serialNumber) {
    DriveRecord drive;
    drive.model.assign(model);
    drive.serialNumber.assign(serialNumber);
    return drive;
}

TEST(FindingRowTest, AFindingBelongsToTheDriveThatItNames) {
    const DriveRecord first = driveNamed("HALDANE", "A1");
    const DriveRecord second = driveNamed("HALDANE", "A12");
    const std::array<const DriveRecord*, 2> drives{&first, &second};
    EXPECT_EQ(driveOfFinding("[HALDANE] - [A12] Found Value [8] in SMART Attribute [Reallocated]", drives), 1U);
    EXPECT_EQ(driveOfFinding("[HALDANE] - [A1] Found Value [8] in SMART Attribute [Reallocated]", drives), 0U);
}

TEST(FindingRowTest, OfDrivesThatAreAlikeTheFirstIsTold) {
    const DriveRecord first = driveNamed("TWIN", "T");
    const DriveRecord second = driveNamed("TWIN", "T");
    const std::array<const DriveRecord*, 2> drives{&first, &second};
    EXPECT_EQ(driveOfFinding("[TWIN] - [T] Found Value [1] in SMART Attribute [x]", drives), 0U);
}

TEST(FindingRowTest, OtherMessagesBelongToNone) {
    const DriveRecord drive = driveNamed("HALDANE", "A1");
    const std::array<const DriveRecord*, 1> drives{&drive};
    EXPECT_EQ(driveOfFinding("Beginning Drive Scan", drives), std::nullopt);
    EXPECT_EQ(driveOfFinding("[HALDANE] - [A1] has gone", drives), std::nullopt);
    EXPECT_EQ(driveOfFinding("[HALDANE] - [B7] Found Value [1] in SMART Attribute [x]", drives), std::nullopt);
    EXPECT_EQ(driveOfFinding("[HALDANE] - [A1] Found Value [1] in SMART Attribute [x]", {}), std::nullopt);
    EXPECT_EQ(driveOfFinding("", drives), std::nullopt);
}

} // namespace
} // namespace torvane
