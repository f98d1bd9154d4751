#include "records/device_identity.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace torvane {
namespace {

StorageDeviceTexts usbDisk() {
    return {.busType = 7, .vendor = "JMicron ", .product = "Generic", .revision = "0508", .serialNumber = "DD564198"};
}

DeviceIdentity probed() {
    return {.descriptor = usbDisk(), .identifySerial = {}, .mediaChanges = {}};
}

TEST(DeviceIdentity, TheIdentifySerialNumberGoesBeforeTheDescriptors) {
    DeviceIdentity device = probed();
    EXPECT_EQ(deviceSerialNumber(device), "DD564198");
    device.identifySerial = "Z9AB12CD";
    EXPECT_EQ(deviceSerialNumber(device), "Z9AB12CD");
}

TEST(DeviceIdentity, ASerialNumberIsTrimmedAndPrintableOrNone) {
    DeviceIdentity device = probed();
    device.descriptor->serialNumber = "  S N 1 ";
    EXPECT_EQ(deviceSerialNumber(device), "S N 1");
    for (const std::optional<std::string>& none :
         {std::optional<std::string>(), std::optional<std::string>("   "), std::optional<std::string>("SN\x02"),
          std::optional<std::string>("")}) {
        device.descriptor->serialNumber = none;
        EXPECT_EQ(deviceSerialNumber(device), "") << none.value_or("none");
    }
    device.descriptor.reset();
    EXPECT_EQ(deviceSerialNumber(device), "");
}

TEST(DeviceIdentity, AReportMayNameEitherOfItsSerialNumbers) {
    DeviceIdentity device = probed();
    device.identifySerial = "Z9AB12CD";
    EXPECT_TRUE(isSerialNumberOf(device, "Z9AB12CD"));
    EXPECT_TRUE(isSerialNumberOf(device, "dd564198 "));
    EXPECT_FALSE(isSerialNumberOf(device, "W1F00000"));
    EXPECT_FALSE(isSerialNumberOf(device, ""));
    EXPECT_FALSE(isSerialNumberOf(DeviceIdentity{}, "Z9AB12CD")) << "a drive that tells none has no report";
}

TEST(DeviceIdentity, TheSameDeviceTellsAllThatItTold) {
    EXPECT_TRUE(isSameDevice(probed(), usbDisk()));
    EXPECT_FALSE(isSameDevice(probed(), std::nullopt));
    EXPECT_TRUE(isSameDevice(DeviceIdentity{}, usbDisk())) << "what it never told is not compared";
    EXPECT_TRUE(isSameDevice(DeviceIdentity{}, std::nullopt));
}

TEST(DeviceIdentity, EachTextCounts) {
    for (auto text : {&StorageDeviceTexts::vendor, &StorageDeviceTexts::product, &StorageDeviceTexts::revision,
                      &StorageDeviceTexts::serialNumber}) {
        StorageDeviceTexts now = usbDisk();
        now.*text = "another";
        EXPECT_FALSE(isSameDevice(probed(), now));
        now.*text = std::nullopt;
        EXPECT_FALSE(isSameDevice(probed(), now)) << "told then, not told now";
        DeviceIdentity silent = probed();
        (*silent.descriptor).*text = std::nullopt;
        EXPECT_TRUE(isSameDevice(silent, usbDisk())) << "not told then";
    }
    StorageDeviceTexts now = usbDisk();
    now.busType = 11;
    EXPECT_FALSE(isSameDevice(probed(), now));
}

PartitionTable mbr(std::uint32_t signature, std::int32_t partitions = 1) {
    return {.style = PartitionStyle::kMbr, .mbrSignature = signature, .gptDiskId = {}, .partitions = partitions};
}

TEST(DeviceIdentity, ATableIsFoundAgainByWhatNamesTheDisk) {
    using Table = std::optional<PartitionTable>;
    EXPECT_EQ(findAgain(Table(mbr(7, 1)), Table(mbr(7, 3))), FoundAgain::kSame) << "whatever it holds";
    EXPECT_EQ(findAgain(Table(mbr(7)), Table(mbr(8))), FoundAgain::kOther);
    EXPECT_EQ(findAgain(Table(mbr(7)), Table(PartitionTable{})), FoundAgain::kOther);
    EXPECT_EQ(findAgain(Table(mbr(7)), Table()), FoundAgain::kNotTold);
    EXPECT_EQ(findAgain(Table(), Table(mbr(7))), FoundAgain::kSame);
    EXPECT_EQ(findAgain(Table(), Table()), FoundAgain::kSame);
    PartitionTable gpt{.style = PartitionStyle::kGpt, .mbrSignature = 0, .gptDiskId = {1, 2, 3}, .partitions = 0};
    PartitionTable otherGpt = gpt;
    otherGpt.gptDiskId[15] = 1;
    EXPECT_EQ(findAgain(Table(gpt), Table(gpt)), FoundAgain::kSame);
    EXPECT_EQ(findAgain(Table(gpt), Table(otherGpt)), FoundAgain::kOther);
}

TEST(DeviceIdentity, MediaChangesAreCounted) {
    using Changes = std::optional<std::uint32_t>;
    EXPECT_EQ(findAgain(Changes(2), Changes(2)), FoundAgain::kSame);
    EXPECT_EQ(findAgain(Changes(2), Changes(3)), FoundAgain::kOther);
    EXPECT_EQ(findAgain(Changes(2), Changes()), FoundAgain::kNotTold);
    EXPECT_EQ(findAgain(Changes(), Changes(3)), FoundAgain::kSame);
}

} // namespace
} // namespace torvane
