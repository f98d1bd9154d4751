#include "base/bytes.h"
#include "tests/unit/workbench_drives.h"
#include "workbench/devices/ata_device.h"
#include "workbench/devices/ata_identify.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

namespace torvane::bench {
namespace {

using testing::drive;

constexpr std::size_t kWord = 2; // bytes

std::uint16_t word(ByteView block, std::size_t index) {
    return loadLe16(block, kWord * index);
}

unsigned sumOf(ByteView block) {
    return std::accumulate(block.begin(), block.end(), 0U) % 256;
}

using testing::swappedText;

AtaCommand identify() {
    AtaCommand command;
    command.command = kAtaIdentifyDevice;
    command.count = 1;
    return command;
}

AtaCommand smart(std::uint8_t subcommand, std::uint8_t log = 0, std::uint16_t count = 1) {
    AtaCommand command;
    command.command = kAtaSmart;
    command.features = subcommand;
    command.count = count;
    command.lba = kSmartSignature | log;
    return command;
}

AtaCommand readLog(std::uint8_t log, std::uint16_t page, std::uint16_t count) {
    AtaCommand command;
    command.command = kAtaReadLogExt;
    command.count = count;
    command.lba = log | (std::uint64_t{page & 0xFFU} << 8) | (std::uint64_t{page} >> 8 << 32);
    return command;
}

TEST(WorkbenchAta, IdentifyTellsWhatIsDescribed) {
    const DriveDescription described = drive(
        R"("physicalSectorSize": 4096, "ata": {"model": "Model A", "serial": "S1", "firmware": "F.1",
            "rotationRate": 5400, "formFactor": "2.5", "wwn": "5000c50012345671", "security": "locked"})");
    AtaDevice device(described);
    const AtaReply reply = device.execute(identify());
    ASSERT_FALSE(reply.failed());
    ASSERT_EQ(reply.data.size(), 512U);
    const ByteView block = reply.data;
    EXPECT_EQ(sumOf(block), 0U);
    EXPECT_EQ(block[510], 0xA5);
    EXPECT_EQ(swappedText(block, 10, 10), "S1                  ");
    EXPECT_EQ(swappedText(block, 23, 4), "F.1     ");
    EXPECT_EQ(swappedText(block, 27, 20), "Model A                                 ");
    EXPECT_EQ(loadLe32(block, kWord * 60), 16384U);
    EXPECT_EQ(loadLe64(block, kWord * 100), 16384U);
    EXPECT_EQ(word(block, 106), 0x6003U); // eight logical sectors in a physical one
    EXPECT_EQ(word(block, 108), 0x5000U);
    EXPECT_EQ(word(block, 111), 0x5671U);
    EXPECT_EQ(word(block, 128), 0x0007U); // supported, enabled, locked
    EXPECT_EQ(word(block, 82) & 0x0003U, 0x0003U);
    EXPECT_EQ(word(block, 85) & 0x0003U, 0x0003U);
    EXPECT_EQ(word(block, 168), 3U);
    EXPECT_EQ(word(block, 217), 5400U);
}

TEST(WorkbenchAta, LargeSectorsAndLargeDrives) {
    DriveDescription described = drive(R"("sectorSize": 4096)");
    described.size = std::uint64_t{1} << 42;
    const AtaBlock block = identifyBlock(described, true);
    EXPECT_EQ(loadLe32(block, kWord * 60), 0x0FFFFFFFU);
    EXPECT_EQ(loadLe64(block, kWord * 100), std::uint64_t{1} << 30);
    EXPECT_EQ(word(block, 106), 0x5000U);
    EXPECT_EQ(loadLe32(block, kWord * 117), 2048U); // words
}

TEST(WorkbenchAta, EverySecurityStateHasItsBitsInTheIdentifyData) {
    const std::array<std::pair<const char*, unsigned>, 5> states = {
        {{"unsupported", 0}, {"disabled", 1}, {"enabled", 3}, {"locked", 7}, {"frozen", 9}}};
    for (const auto& [name, expected] : states) {
        const DriveDescription described = drive(R"("ata": {"security": ")" + std::string(name) + R"("})");
        EXPECT_EQ(word(identifyBlock(described, true), 128), expected) << name;
    }
}

TEST(WorkbenchAta, SmartDataCarriesTheAttributes) {
    const DriveDescription described = drive(
        R"("ata": {"smart": {"selfTestStatus": 121, "attributes": [
            {"id": 5, "flags": 51, "value": 88, "worst": 87, "threshold": 5, "raw": 214},
            {"id": 194, "raw": [1, 2, 3, 4, 5, 6]}]}})");
    AtaDevice device(described);
    const AtaReply data = device.execute(smart(kSmartReadData));
    ASSERT_EQ(data.data.size(), 512U);
    EXPECT_EQ(sumOf(data.data), 0U);
    const std::vector<std::uint8_t> first(data.data.begin() + 2, data.data.begin() + 14);
    EXPECT_EQ(first, (std::vector<std::uint8_t>{5, 51, 0, 88, 87, 214, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(data.data[14], 194);
    EXPECT_EQ(data.data[14 + 5], 1);
    EXPECT_EQ(data.data[14 + 10], 6);
    EXPECT_EQ(data.data[26], 0); // no third attribute
    EXPECT_EQ(data.data[363], 121);
    const AtaReply thresholds = device.execute(smart(kSmartReadThresholds));
    EXPECT_EQ(sumOf(thresholds.data), 0U);
    EXPECT_EQ(thresholds.data[2], 5);
    EXPECT_EQ(thresholds.data[3], 5);
}

TEST(WorkbenchAta, SmartStatusTellsHealthInTheAddressRegisters) {
    const DriveDescription good = drive(R"("ata": {})");
    const DriveDescription bad = drive(R"("ata": {"smart": {"health": "failed"}})");
    EXPECT_EQ(AtaDevice(good).execute(smart(kSmartReturnStatus)).lba & 0xFFFF00, 0xC24F00U);
    EXPECT_EQ(AtaDevice(bad).execute(smart(kSmartReturnStatus)).lba & 0xFFFF00, 0x2CF400U);
}

TEST(WorkbenchAta, SmartIsSwitchedOnAndOff) {
    const DriveDescription described = drive(R"("ata": {"smart": {"enabled": false}})");
    AtaDevice device(described);
    EXPECT_TRUE(device.execute(smart(kSmartReadData)).failed());
    EXPECT_EQ(word(device.execute(identify()).data, 85) & 1U, 0U);
    EXPECT_FALSE(device.execute(smart(kSmartEnable)).failed());
    EXPECT_FALSE(device.execute(smart(kSmartReadData)).failed());
    EXPECT_EQ(word(device.execute(identify()).data, 85) & 1U, 1U);
    EXPECT_FALSE(device.execute(smart(kSmartDisable)).failed());
    EXPECT_TRUE(device.execute(smart(kSmartReadData)).failed());
}

TEST(WorkbenchAta, WhatIsRefusedIsAborted) {
    const DriveDescription described =
        drive(R"("ata": {"identifyFails": true, "smart": {"readDataFails": true, "logs": false}})");
    AtaDevice device(described);
    AtaCommand withoutSignature = smart(kSmartReturnStatus);
    withoutSignature.lba = 0;
    AtaCommand unknown;
    unknown.command = 0x99;
    for (const AtaCommand& command : {identify(), smart(kSmartReadData), smart(kSmartReadThresholds), smart(0xFF),
                                      smart(kSmartReadLog, 0), readLog(0, 0, 1), withoutSignature, unknown}) {
        const AtaReply reply = device.execute(command);
        EXPECT_EQ(reply.status, 0x51) << ataCommandName(command);
        EXPECT_EQ(reply.error, 0x04) << ataCommandName(command);
        EXPECT_TRUE(reply.data.empty());
    }
    const DriveDescription without = drive(R"("ata": {"smart": {"supported": false}})");
    AtaDevice old(without);
    EXPECT_TRUE(old.execute(smart(kSmartEnable)).failed());
    EXPECT_TRUE(old.execute(readLog(0, 0, 1)).failed());
    EXPECT_EQ(word(old.execute(identify()).data, 82) & 1U, 0U);
}

std::string errors(std::size_t count) {
    std::string list;
    for (std::size_t i = 0; i < count; ++i) {
        list += (i == 0 ? "" : ",") + std::string(R"({"lba": )") + std::to_string(0x0A0B0C0D0EULL + i) +
                R"(, "hours": )" + std::to_string(100 + i) + "}";
    }
    return R"("ata": {"smart": {"errorLog": [)" + list + "]}}";
}

TEST(WorkbenchAta, TheExtendedErrorLogHoldsEveryError) {
    const DriveDescription described = drive(errors(6));
    AtaDevice device(described);
    const AtaReply reply = device.execute(readLog(0x03, 0, 2));
    ASSERT_EQ(reply.data.size(), 1024U);
    const ByteView log = reply.data;
    EXPECT_EQ(sumOf(log.first(512)), 0U);
    EXPECT_EQ(sumOf(log.subspan(512)), 0U);
    EXPECT_EQ(log[0], 1);
    EXPECT_EQ(loadLe16(log, 2), 6U);
    EXPECT_EQ(loadLe16(log, 500), 6U);
    const ByteView failure = log.subspan(4 + 90, 34); // of the first entry
    EXPECT_EQ(failure[1], 0x40);
    EXPECT_EQ(failure[11], 0x51);
    EXPECT_EQ(failure[4], 0x0E); // 7:0
    EXPECT_EQ(failure[5], 0x0B); // 31:24
    EXPECT_EQ(failure[6], 0x0D); // 15:8
    EXPECT_EQ(failure[7], 0x0A); // 39:32
    EXPECT_EQ(failure[8], 0x0C); // 23:16
    EXPECT_EQ(failure[9], 0x00); // 47:40
    EXPECT_EQ(loadLe16(failure, 32), 100U);
    EXPECT_EQ(log[4 + 4 * 18 + 12], 0x60);  // the command that failed
    EXPECT_EQ(log[512 + 4 + 90 + 4], 0x12); // the fifth error, first on the second page
    EXPECT_TRUE(device.execute(readLog(0x03, 0, 3)).failed());
    EXPECT_TRUE(device.execute(readLog(0x03, 2, 1)).failed());
    EXPECT_TRUE(device.execute(readLog(0x03, 0, 0)).failed());
    const AtaReply second = device.execute(readLog(0x03, 1, 1));
    EXPECT_TRUE(std::equal(second.data.begin(), second.data.end(), log.begin() + 512));
}

TEST(WorkbenchAta, TheSummaryErrorLogIsARingOfFive) {
    const DriveDescription described = drive(errors(6));
    AtaDevice device(described);
    const AtaReply reply = device.execute(smart(kSmartReadLog, 0x01));
    ASSERT_EQ(reply.data.size(), 512U);
    EXPECT_EQ(sumOf(reply.data), 0U);
    EXPECT_EQ(reply.data[1], 1); // the sixth error took the first one's place
    EXPECT_EQ(loadLe16(reply.data, 452), 6U);
    EXPECT_EQ(loadLe16(reply.data, 2 + 60 + 28), 105U);
    EXPECT_EQ(loadLe16(reply.data, 2 + 90 + 60 + 28), 101U);
}

TEST(WorkbenchAta, SelfTestsAreLogged) {
    const DriveDescription described = drive(
        R"("ata": {"smart": {"selfTestLog": [{"test": 1, "hours": 10}, {"test": 2, "status": 112, "hours": 20, "lba": 77}]}})");
    AtaDevice device(described);
    const AtaReply old = device.execute(smart(kSmartReadLog, 0x06));
    EXPECT_EQ(sumOf(old.data), 0U);
    EXPECT_EQ(old.data[508], 2);
    EXPECT_EQ(old.data[2 + 24], 2);
    EXPECT_EQ(old.data[2 + 24 + 1], 112);
    EXPECT_EQ(loadLe32(old.data, 2 + 24 + 5), 77U);
    const AtaReply extended = device.execute(readLog(0x07, 0, 1));
    EXPECT_EQ(sumOf(extended.data), 0U);
    EXPECT_EQ(loadLe16(extended.data, 2), 2U);
    EXPECT_EQ(loadLe16(extended.data, 4 + 2), 10U);
    EXPECT_EQ(extended.data[4 + 10], 0xFF); // no failing address
}

TEST(WorkbenchAta, DirectoriesListTheLogs) {
    const DriveDescription described = drive(errors(9));
    AtaDevice device(described);
    const AtaReply general = device.execute(readLog(0x00, 0, 1));
    EXPECT_EQ(loadLe16(general.data, 0), 1U);
    EXPECT_EQ(word(general.data, 0x03), 3U);
    EXPECT_EQ(word(general.data, 0x07), 1U);
    EXPECT_EQ(word(general.data, 0x01), 0U);
    const AtaReply old = device.execute(smart(kSmartReadLog, 0x00));
    EXPECT_EQ(word(old.data, 0x01), 1U);
    EXPECT_EQ(word(old.data, 0x03), 0U);
    EXPECT_EQ(device.execute(smart(kSmartReadLog, 0x09)).data.size(), 512U);
    EXPECT_TRUE(device.execute(smart(kSmartReadLog, 0xE0)).failed());
}

TEST(WorkbenchAta, AGarbageDeviceCarriesOutEverythingAndAnswersNoise) {
    const DriveDescription described = drive(R"("ata": {"garbage": 5, "smart": {"readDataFails": true}})");
    AtaDevice device(described);
    AtaCommand unknown;
    unknown.command = 0xC8;
    unknown.count = 3;
    for (const AtaCommand& command : {identify(), smart(kSmartReadData), readLog(3, 0, 1), unknown}) {
        const AtaReply reply = device.execute(command);
        EXPECT_FALSE(reply.failed());
        ASSERT_EQ(reply.data.size(), command.count * 512U);
        EXPECT_NE(sumOf(reply.data), 0U) << "no checksum is right";
        EXPECT_EQ(reply.data, device.execute(command).data) << "the same for the same command";
    }
    EXPECT_NE(device.execute(identify()).data, device.execute(smart(kSmartReadData)).data);
    const DriveDescription other = drive(R"("ata": {"garbage": 6})");
    EXPECT_NE(AtaDevice(other).execute(identify()).data, device.execute(identify()).data);
    EXPECT_TRUE(device.execute(smart(kSmartEnable)).data.empty()) << "no data where the command has none";
    EXPECT_NE(device.execute(smart(kSmartReturnStatus)).lba & 0xFFFF00, kSmartSignature);
}

TEST(WorkbenchAta, CommandsHaveNames) {
    AtaCommand command;
    command.command = 0xC8;
    EXPECT_EQ(ataCommandName(command), "ata:0xc8");
    EXPECT_EQ(ataCommandName(identify()), "IDENTIFY_DEVICE");
    EXPECT_EQ(ataCommandName(smart(kSmartReturnStatus)), "SMART_RETURN_STATUS");
    EXPECT_EQ(ataCommandName(smart(0x01)), "SMART");
    EXPECT_EQ(ataCommandName(readLog(0, 0, 1)), "READ_LOG_EXT");
}

} // namespace
} // namespace torvane::bench
