#include "monitoring/device_listing.h"

#include <gtest/gtest.h>

#include <string>

namespace torvane {
namespace {

ListedDevice read(const char* line, std::int32_t previousNumber = -1) {
    ListedDevice device;
    device.name = "previous";
    device.driveNumber = previousNumber;
    readListedDevice(line, device);
    return device;
}

TEST(DeviceListing, ReadsALineOfTheListing) {
    const ListedDevice device = read("/dev/sdb -d ata # /dev/sdb, ATA device");
    EXPECT_EQ(device.name, "/dev/sdb");
    EXPECT_EQ(device.driveNumber, 1);
    EXPECT_EQ(device.commandPart, "/dev/sdb -d sat");
    EXPECT_EQ(reportCommandLine(device), "smartctl.exe /dev/sdb -d sat -s on -x -T verypermissive -T verypermissive");
}

TEST(DeviceListing, TheOneLetterOfTheNameIsTheDriveNumber) {
    EXPECT_EQ(read("/dev/sda -d nvme # x").driveNumber, 0);
    EXPECT_EQ(read("/dev/sdc -d scsi # x").driveNumber, 2);
    EXPECT_EQ(read("/dev/sdz -d scsi # x").driveNumber, 25);
    EXPECT_EQ(read("/dev/sdaa -d scsi # x", 3).driveNumber, -1) << "two letters are no drive's, and none's last report";
    EXPECT_EQ(read("/dev/sd -d scsi # x", 3).driveNumber, -1);
    EXPECT_EQ(read("/dev/hda -d ata # x", 3).driveNumber, -1);
    EXPECT_EQ(read("sda -d ata # x", 3).driveNumber, -1);
    EXPECT_EQ(read("/dev/nvme0 -d nvme # x", 3).driveNumber, -1);
    EXPECT_EQ(read("/dev/csmi0,0 -d ata # x", 3).driveNumber, -1);
    EXPECT_EQ(read("/dev/sdB -d ata # x", 3).driveNumber, -1) << "a capital is no drive's letter";
}

TEST(DeviceListing, EveryDeviceIsAskedThroughTheTranslation) {
    EXPECT_EQ(read("/dev/nvme0 -d nvme # x").commandPart, "/dev/nvme0 -d sat");
    EXPECT_EQ(read("/dev/sda -d usbjmicron,0 --more").commandPart, "/dev/sda -d sat");
}

TEST(DeviceListing, ALineOfFewerThanThreeWordsKeepsTheLastNumberAndItsOwnText) {
    for (const char* const line : {"/dev/sdc -d", "/dev/sdc ", "# /dev/sdc -d ata", ""}) {
        const ListedDevice device = read(line, 4);
        EXPECT_EQ(device.driveNumber, 4) << line;
        EXPECT_EQ(device.name, "") << line;
        EXPECT_EQ(device.commandPart, std::string(line).substr(0, std::string(line).find('#'))) << line;
    }
    EXPECT_EQ(read("/dev/sdc").driveNumber, -1) << "there is no line before the first";
}

TEST(DeviceListing, AWordOfTheListingStaysOneArgument) {
    EXPECT_EQ(read("/dev/\"sda -d ata").commandPart, R"("/dev/\"sda" -d sat)");
    EXPECT_EQ(read("a\t-s,off,b -d ata").commandPart, "\"a\t-s,off,b\" -d sat");
    EXPECT_EQ(read("x\\\"\\ -d ata").commandPart, R"("x\\\"\\" -d sat)");
    EXPECT_EQ(read("\\\\.\\a -d ata").commandPart, R"(\\.\a -d sat)") << "a backslash alone is harmless";
    EXPECT_EQ(read("  one  t\"wo  ", 0).commandPart, R"(  one  "t\"wo"  )");
}

TEST(DeviceListing, NoTextIsAFormat) {
    EXPECT_EQ(reportCommandLine(read("%s%n%d -d ata")),
              "smartctl.exe %s%n%d -d sat -s on -x -T verypermissive -T verypermissive");
}

TEST(DeviceListing, SurvivesALongLine) {
    const std::string line = std::string(100'000, 'a') + " -d ata";
    const ListedDevice device = read(line.c_str(), 7);
    EXPECT_EQ(device.driveNumber, 7) << "cut at 4095 bytes there is one word";
    EXPECT_EQ(device.commandPart.size(), 4095U);
}

} // namespace
} // namespace torvane
