#include "workbench/devices/scsi_device.h"

#include "base/bytes.h"
#include "tests/unit/workbench_drives.h"
#include "workbench/devices/nvme_device.h"
#include "workbench/devices/pattern.h"
#include "workbench/devices/scsi_basics.h"
#include "workbench/devices/storage_property.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <string>
#include <string_view>
#include <vector>

namespace torvane::bench {
namespace {

using testing::drive;
using testing::nvmeDrive;
using testing::swappedText;
using Cdb = std::vector<std::uint8_t>;

const Cdb kInquiry = {0x12, 0, 0, 0, 36, 0};

ScsiReply send(const DriveDescription& described, const Cdb& cdb, std::size_t allocation = 4096) {
    AtaDevice ata(described);
    ScsiDevice scsi(described, ata);
    return scsi.execute(cdb, {}, allocation);
}

std::string textOf(const std::vector<std::uint8_t>& data, std::size_t from, std::size_t to = std::string::npos) {
    const std::string all(data.begin(), data.end());
    return all.substr(from, to == std::string::npos ? to : to - from);
}

TEST(WorkbenchScsi, InquiryOfATranslatedDriveTellsOfTheDisk) {
    const DriveDescription described = drive(R"("road": "sat", "identity": {"vendor": "Bridge", "product": "Box"},
        "ata": {"model": "Model inside of it", "serial": "S9", "firmware": "F123456"})");
    EXPECT_EQ(textOf(send(described, kInquiry).data, 8), "ATA     Model inside of F123");
    EXPECT_EQ(send(described, kInquiry).commandName, "INQUIRY");
    EXPECT_EQ(textOf(send(described, {0x12, 1, 0x80, 0, 255, 0}).data, 4), "S9");
    const ScsiReply information = send(described, {0x12, 1, 0x89, 2, 0x3C, 0});
    ASSERT_EQ(information.data.size(), 572U);
    EXPECT_EQ(swappedText(ByteView(information.data).subspan(60), 10, 1), "S9");
}

TEST(WorkbenchScsi, InquiryOfAScsiDriveTellsItsIdentity) {
    const DriveDescription described =
        drive(R"("road": "scsi", "removable": true, "identity": {"vendor": "LUN", "serial": "7"})");
    const ScsiReply inquiry = send(described, kInquiry);
    EXPECT_EQ(textOf(inquiry.data, 8), "LUN                         ");
    EXPECT_EQ(inquiry.data[1], 0x80);
    const ScsiReply refused = send(described, {0x12, 1, 0x89, 2, 0x3C, 0});
    EXPECT_EQ(refused.status, kScsiCheckCondition);
    EXPECT_EQ(refused.sense[2], kSenseIllegalRequest);
    EXPECT_EQ(refused.sense[12], kInvalidFieldInCdb);
    EXPECT_EQ(send(described, {0x12, 1, 0, 0, 255, 0}).data, (std::vector<std::uint8_t>{0, 0, 0, 2, 0, 0x80}));
}

TEST(WorkbenchScsi, CapacityIsTold) {
    const DriveDescription described = drive(R"("road": "scsi", "sectorSize": 512, "physicalSectorSize": 4096)");
    EXPECT_EQ(send(described, {0x25, 0, 0, 0, 0, 0, 0, 0, 0, 0}).data,
              (std::vector<std::uint8_t>{0, 0, 0x3F, 0xFF, 0, 0, 2, 0}));
    const ScsiReply large = send(described, {0x9E, 0x10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 32, 0, 0});
    ASSERT_EQ(large.data.size(), 32U);
    EXPECT_EQ(large.data[6], 0x3F);
    EXPECT_EQ(large.data[7], 0xFF);
    EXPECT_EQ(large.data[10], 2);
    EXPECT_EQ(large.data[13], 3);
    EXPECT_EQ(send(described, {0x9E, 0x11}).status, kScsiCheckCondition);
}

TEST(WorkbenchScsi, CapacityOfNothingIsNotReady) {
    DriveDescription described = drive(R"("road": "scsi")");
    described.size = 0;
    EXPECT_EQ(send(described, {0x25, 0, 0, 0, 0, 0, 0, 0, 0, 0}).status, kScsiCheckCondition);
    EXPECT_EQ(send(described, {0x9E, 0x10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 32, 0, 0}).status, kScsiCheckCondition);
}

TEST(WorkbenchScsi, SmallCommandsAreAnswered) {
    const DriveDescription described = drive(R"("road": "scsi")");
    EXPECT_EQ(send(described, {0, 0, 0, 0, 0, 0}).status, kScsiGood);
    EXPECT_EQ(send(described, {3, 0, 0, 0, 18, 0}).data[0], 0x70);
    EXPECT_EQ(send(described, {0xA0}).data[3], 8);
    const ScsiReply six = send(described, {0x1A, 0, 0x08, 0, 255, 0});
    EXPECT_EQ(six.data[0], six.data.size() - 1);
    EXPECT_EQ(six.data[4], 0x08);
    const ScsiReply ten = send(described, {0x5A, 0, 0x3F, 0, 0, 0, 0, 0, 255, 0});
    EXPECT_EQ(ten.data[1], ten.data.size() - 2);
    EXPECT_EQ(send(described, {0x1A, 0, 0x1C, 0, 255, 0}).sense[12], kInvalidFieldInCdb);
    const ScsiReply unknown = send(described, {0xE4});
    EXPECT_EQ(unknown.sense[12], kInvalidOperationCode);
    EXPECT_EQ(unknown.commandName, "scsi:0xe4");
}

TEST(WorkbenchScsi, AtaRegistersComeFromTheCdb) {
    const AtaCommand twelve = ataCommandOfCdb(Cdb{0xA1, 0x08, 0x0E, 0xD0, 1, 2, 0x4F, 0xC2, 0xA0, 0xB0, 0, 0});
    EXPECT_EQ(twelve.features, 0xD0);
    EXPECT_EQ(twelve.count, 1);
    EXPECT_EQ(twelve.lba, 0xC24F02U);
    EXPECT_EQ(twelve.device, 0xA0);
    EXPECT_EQ(twelve.command, 0xB0);
    const Cdb sixteen = {0x85, 0x09, 0x0E, 0x12, 0x34, 0x56, 0x78, 0x04, 0x01, 0x05, 0x02, 0x06, 0x03, 0x40, 0x2F, 0};
    const AtaCommand extended = ataCommandOfCdb(sixteen);
    EXPECT_EQ(extended.features, 0x1234);
    EXPECT_EQ(extended.count, 0x5678);
    EXPECT_EQ(extended.lba, 0x060504030201U);
    Cdb plain = sixteen;
    plain[1] = 0x08;
    EXPECT_EQ(ataCommandOfCdb(plain).lba, 0x030201U);
    EXPECT_EQ(ataCommandOfCdb(plain).count, 0x78);
}

TEST(WorkbenchScsi, RegistersComeBackInTheSenseData) {
    const DriveDescription described = drive(R"("road": "sat", "ata": {"smart": {"health": "failed"}})");
    const ScsiReply status = send(described, {0x85, 0x06, 0x2C, 0, 0xDA, 0, 0, 0, 0, 0, 0x4F, 0, 0xC2, 0, 0xB0, 0});
    EXPECT_EQ(status.status, kScsiCheckCondition);
    ASSERT_EQ(status.sense.size(), 22U);
    EXPECT_EQ(status.sense[0], 0x72);
    EXPECT_EQ(status.sense[1], kSenseRecovered);
    EXPECT_EQ(status.sense[3], 0x1D);
    EXPECT_EQ(status.sense[8], 0x09);
    EXPECT_EQ(status.sense[17], 0xF4);
    EXPECT_EQ(status.sense[19], 0x2C);
    EXPECT_EQ(status.sense[21], 0x50);
    const ScsiReply aborted = send(described, {0x85, 0x08, 0x0E, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0x99, 0});
    EXPECT_EQ(aborted.sense[1], kSenseAborted);
    EXPECT_EQ(aborted.sense[11], 0x04);
    EXPECT_EQ(aborted.commandName, "ata:0x99");
}

TEST(WorkbenchScsi, OnlyTranslatingDrivesPassAtaThrough) {
    const DriveDescription described = drive(R"("road": "scsi")");
    EXPECT_EQ(send(described, {0x85, 0x08, 0x0E, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0xEC, 0}).sense[12],
              kInvalidOperationCode);
}

// --- NVMe ----------------------------------------------------------------------------------------------------------

class Bridge {
  public:
    explicit Bridge(const DriveDescription& described) : ata_(described), scsi_(described, ata_) {}

    ScsiReply send(std::vector<std::uint8_t> block) {
        block.resize(512);
        return scsi_.execute(Cdb{0xA1, 0x80, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0}, block, 512);
    }
    ScsiReply receive(std::size_t length) {
        return scsi_.execute(Cdb{0xA1, 0x82, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0}, {}, length);
    }

  private:
    AtaDevice ata_;
    ScsiDevice scsi_;
};

std::vector<std::uint8_t> identifyBlockForBridge() {
    std::vector<std::uint8_t> block(512);
    const std::string_view signature = "NVME";
    std::copy(signature.begin(), signature.end(), block.begin());
    block[8] = kNvmeIdentify;
    block[48] = 1;
    return block;
}

TEST(WorkbenchNvme, TheBridgeCarriesCommands) {
    const DriveDescription described =
        drive(R"("road": "usb-bridge", "nvme": {"model": "Inside", "health": {"availableSpare": 33}})");
    Bridge bridge(described);
    EXPECT_EQ(bridge.receive(4096).status, kScsiCheckCondition); // nothing was sent yet
    EXPECT_EQ(bridge.send({1, 2, 3}).status, kScsiCheckCondition);
    EXPECT_EQ(bridge.send(identifyBlockForBridge()).commandName, "NVME_IDENTIFY");
    const ScsiReply controller = bridge.receive(4096);
    EXPECT_EQ(controller.data.size(), 4096U);
    EXPECT_EQ(textOf(controller.data, 24, 30), "Inside");
    std::vector<std::uint8_t> health = identifyBlockForBridge();
    health[8] = kNvmeGetLogPage;
    health[48] = kNvmeHealthLog;
    health[50] = 0x7F;
    bridge.send(health);
    const ScsiReply log = bridge.receive(512);
    EXPECT_EQ(log.data.size(), 512U);
    EXPECT_EQ(log.data[3], 33);
}

TEST(WorkbenchNvme, AnEchoingBridgeGivesItsBlockBack) {
    const DriveDescription described = drive(R"("road": "usb-bridge", "nvme": {"bridgeEchoes": true})");
    Bridge bridge(described);
    bridge.send(identifyBlockForBridge());
    const ScsiReply echo = bridge.receive(4096);
    EXPECT_EQ(std::accumulate(echo.data.begin(), echo.data.begin() + 512, 0U), 317U);
}

TEST(WorkbenchNvme, HealthAndIdentityAreTold) {
    const DriveDescription described = drive(R"("sectorSize": 4096, "nvme": {"serial": "N1", "health": {
        "criticalWarning": 4, "temperature": 310, "availableSpareThreshold": 10, "percentageUsed": 104,
        "dataUnitsRead": 11, "dataUnitsWritten": 18446744073709551615, "powerOnHours": 12, "mediaErrors": 13}})");
    const auto log = executeNvme(described, {kNvmeGetLogPage, kNvmeAllNamespaces, 0x007F0002}, 512);
    ASSERT_TRUE(log && log->size() == 512);
    EXPECT_EQ((*log)[0], 4);
    EXPECT_EQ(loadLe16(*log, 1), 310U);
    EXPECT_EQ((*log)[3], 100);
    EXPECT_EQ((*log)[4], 10);
    EXPECT_EQ((*log)[5], 104);
    EXPECT_EQ(loadLe64(*log, 32), 11U);
    EXPECT_EQ(loadLe64(*log, 48), 18446744073709551615U);
    EXPECT_EQ(loadLe64(*log, 128), 12U);
    EXPECT_EQ(loadLe64(*log, 160), 13U);
    const auto space = executeNvme(described, {kNvmeIdentify, 1, 0}, 4096);
    ASSERT_TRUE(space);
    EXPECT_EQ(loadLe64(*space, 0), 2048U);
    EXPECT_EQ((*space)[130], 12);
    const auto controller = executeNvme(described, {kNvmeIdentify, 0, 1}, 64);
    ASSERT_TRUE(controller && controller->size() == 64);
    EXPECT_EQ(textOf(*controller, 4, 24), "N1                  ");
}

TEST(WorkbenchNvme, WhatIsRefusedGivesNothing) {
    const DriveDescription described = drive(R"("nvme": {"identifyFails": true, "healthFails": true})");
    EXPECT_FALSE(executeNvme(described, {kNvmeIdentify, 0, 1}, 4096));
    EXPECT_FALSE(executeNvme(described, {kNvmeGetLogPage, kNvmeAllNamespaces, 2}, 512));
    const DriveDescription good = drive(R"("nvme": {})");
    EXPECT_FALSE(executeNvme(good, {kNvmeIdentify, 2, 0}, 4096)); // there is one namespace
    EXPECT_FALSE(executeNvme(good, {kNvmeGetLogPage, kNvmeAllNamespaces, 3}, 512));
    EXPECT_FALSE(executeNvme(good, {0x0C, 0, 0}, 512));
    EXPECT_EQ(nvmeCommandName(0x0C), "nvme:0x0c");
}

// --- descriptors and content ---------------------------------------------------------------------------------------

std::string toldSerial(const DriveDescription& drive) {
    const Bytes bytes = deviceDescriptor(drive);
    const std::uint32_t at = loadLe32(bytes, 24);
    return at == 0 ? "none" : reinterpret_cast<const char*>(bytes.data() + at);
}

TEST(WorkbenchDescriptor, AnNvmeDriveTellsAnEui64UnlessItsSerialNumberIsDescribed) {
    const auto nvme = [](const std::string& more) {
        return nvmeDrive(R"("nvme": {"serial": "HG51-2290-0077-A1"})" + more);
    };
    EXPECT_EQ(toldSerial(nvme("")), "0231_DCD7_F59C_5242.");
    EXPECT_EQ(nvme("").nvme.serial, "HG51-2290-0077-A1");
    EXPECT_EQ(toldSerial(nvme(R"(, "identity": {"serial": "AS TOLD"})")), "AS TOLD");
    EXPECT_EQ(toldSerial(nvmeDrive(R"("road": "nvme-query")")), "none");
    EXPECT_EQ(toldSerial(drive(R"("nvme": {"serial": "HG51"})")), "none") << "no NVMe drive";
}

TEST(WorkbenchDescriptor, WhatTakesAnNvmeDrivesPlaceTellsAnotherEui64) {
    const DriveDescription own = nvmeDrive(R"("nvme": {"serial": "HG51"})");
    const DriveDescription other = swappedDrive(own);
    EXPECT_EQ(other.nvme.serial, "HG51-SWAPPED");
    EXPECT_NE(toldSerial(other), toldSerial(own));
    const DriveDescription card = nvmeDrive(R"("nvme": {"serial": "HG51"}, "removable": true)");
    EXPECT_EQ(toldSerial(swappedDrive(card)), toldSerial(card));
}

TEST(WorkbenchDescriptor, AbsentTextsHaveNoOffset) {
    const Bytes bytes = deviceDescriptor(drive(R"("identity": {"product": "P", "serial": ""})"));
    EXPECT_EQ(loadLe32(bytes, 12), 0U);
    EXPECT_EQ(loadLe32(bytes, 16), 36U);
    EXPECT_EQ(loadLe32(bytes, 20), 0U);
    EXPECT_EQ(loadLe32(bytes, 24), 38U);
    EXPECT_EQ(bytes.size(), 39U);
    EXPECT_EQ(loadLe32(bytes, 4), 39U);
    EXPECT_EQ(loadLe32(bytes, 28), 11U);
}

TEST(WorkbenchDescriptor, OverridesReplaceWhatFollows) {
    const Bytes bytes = deviceDescriptor(drive(R"("identity": {"vendor": "V"}, "descriptor": {"vendorOffset": 7,
        "productOffset": 8, "revisionOffset": 9, "serialOffset": 4294967295, "size": 0, "busType": 99,
        "returnedLength": 32})"));
    EXPECT_EQ(bytes.size(), 32U);
    EXPECT_EQ(loadLe32(bytes, 4), 0U);
    EXPECT_EQ(loadLe32(bytes, 12), 7U);
    EXPECT_EQ(loadLe32(bytes, 16), 8U);
    EXPECT_EQ(loadLe32(bytes, 20), 9U);
    EXPECT_EQ(loadLe32(bytes, 24), 4294967295U);
    EXPECT_EQ(loadLe32(bytes, 28), 99U);
}

TEST(WorkbenchDescriptor, GeometryCountsWholeCylinders) {
    const Bytes bytes = driveGeometryEx(drive(R"("removable": true)"));
    EXPECT_EQ(bytes.size(), 32U);
    EXPECT_EQ(loadLe64(bytes, 0), 1U); // 8 MiB hold one cylinder of 255 x 63 sectors
    EXPECT_EQ(loadLe32(bytes, 8), 11U);
    EXPECT_EQ(loadLe32(bytes, 20), 512U);
    EXPECT_EQ(loadLe64(bytes, 24), 8388608U);
}

TEST(WorkbenchPattern, ContentDependsOnThePlaceAlone) {
    for (const char* kind : {"zero", "sector-number", "noise"}) {
        const Backing backing = drive(R"("backing": {"pattern": ")" + std::string(kind) + "\"}").backing;
        std::vector<std::uint8_t> whole(4096);
        fillPattern(backing, 1024, whole);
        for (const std::size_t offset : {0U, 1U, 15U, 16U, 17U, 511U, 512U, 1000U}) {
            std::vector<std::uint8_t> part(777);
            fillPattern(backing, 1024 + offset, part);
            EXPECT_TRUE(std::equal(part.begin(), part.end(), whole.begin() + static_cast<std::ptrdiff_t>(offset)))
                << kind << " " << offset;
        }
    }
}

TEST(WorkbenchPattern, ContentIsAsDocumented) {
    std::vector<std::uint8_t> bytes(32);
    fillPattern(drive(R"("backing": {"pattern": "sector-number"})").backing, 512 * 1234567 + 496, bytes);
    EXPECT_EQ(textOf(bytes, 0), "LBA=000001234567LBA=000001234568");
    fillPattern(drive(R"("backing": {"pattern": "noise", "seed": 7})").backing, 512, bytes);
    EXPECT_EQ(loadLe64(bytes, 8), splitMix(7 + 65));
    // The first output of SplitMix64 with state 0 is this function of its increment.
    EXPECT_EQ(splitMix(0x9E3779B97F4A7C15ULL), 0xE220A8397B1DCDAFULL);
}

} // namespace
} // namespace torvane::bench
