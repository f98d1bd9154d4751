#include "monitoring/nvme_usb_bridge.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <vector>

namespace torvane {
namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr auto kShort = PassThroughLayout::kShort;
constexpr auto kLong = PassThroughLayout::kLong;

TEST(UsbBridge, TheCommandsLieInTheirBlocks) {
    BridgeBlock identify{};
    identify[0] = 'N';
    identify[1] = 'V';
    identify[2] = 'M';
    identify[3] = 'E';
    BridgeBlock health = identify;
    identify[8] = 6;
    identify[48] = 1;
    EXPECT_EQ(bridgeIdentifyBlock(), identify);
    EXPECT_EQ(std::accumulate(identify.begin(), identify.end(), 0), 317);

    health[8] = 2;
    health[10] = 0x56;
    health[12] = health[13] = health[14] = health[15] = 0xFF;
    health[33] = 0x40;
    health[34] = 0x7A;
    health[48] = 2;
    health[50] = 0x7F;
    EXPECT_EQ(bridgeHealthBlock(), health);
}

/// The short structure, made by hand.
Bytes shortHeader(std::uint8_t direction, std::uint32_t dataLength, std::uint8_t cdb1) {
    Bytes header(68);
    storeLe<std::uint16_t>(header, 0, 44);
    header[6] = 12; // CDB length
    header[7] = 24; // sense length
    header[8] = direction;
    storeLe<std::uint32_t>(header, 12, dataLength);
    storeLe<std::uint32_t>(header, 16, 2);  // seconds
    storeLe<std::uint32_t>(header, 20, 68); // data offset
    storeLe<std::uint32_t>(header, 24, 44); // sense offset
    header[28] = 0xA1;
    header[29] = cdb1;
    header[32] = 0x02;
    return header;
}

/// The long structure: a data offset of eight bytes, sense and data further back.
Bytes longHeader(std::uint8_t direction, std::uint32_t dataLength, std::uint8_t cdb1) {
    Bytes header(80);
    storeLe<std::uint16_t>(header, 0, 56);
    header[6] = 12;
    header[7] = 24;
    header[8] = direction;
    storeLe<std::uint32_t>(header, 12, dataLength);
    storeLe<std::uint32_t>(header, 16, 2);
    storeLe<std::uint64_t>(header, 24, 80);
    storeLe<std::uint32_t>(header, 32, 56);
    header[36] = 0xA1;
    header[37] = cdb1;
    header[40] = 0x02;
    return header;
}

Bytes joined(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

TEST(UsbBridge, SendRequestsHaveEveryByteInItsPlace) {
    BridgeBlock block{};
    std::iota(block.begin(), block.end(), std::uint8_t{1});
    const Bytes data(block.begin(), block.end());
    EXPECT_EQ(bridgeSendRequest(kShort, block), joined(shortHeader(0, 512, 0x80), data));
    EXPECT_EQ(bridgeSendRequest(kLong, block), joined(longHeader(0, 512, 0x80), data));
}

TEST(UsbBridge, ReceiveRequestsHaveEveryByteInItsPlace) {
    EXPECT_EQ(bridgeReceiveRequest(kShort, 4096), joined(shortHeader(1, 4096, 0x82), Bytes(4096)));
    EXPECT_EQ(bridgeReceiveRequest(kShort, 512), joined(shortHeader(1, 512, 0x82), Bytes(512)));
    EXPECT_EQ(bridgeReceiveRequest(kLong, 4096), joined(longHeader(1, 4096, 0x82), Bytes(4096)));
}

TEST(UsbBridge, TakesTheDataAtItsOffset) {
    Bytes reply(68 + 512);
    reply[68] = 0xAB;
    ASSERT_TRUE(bridgeData(kShort, reply, 512));
    EXPECT_EQ(bridgeData(kShort, reply, 512)->front(), 0xAB);
    EXPECT_FALSE(bridgeData(kShort, reply, 513));
    EXPECT_FALSE(bridgeData(kLong, reply, 512));

    Bytes longReply(80 + 512);
    longReply[80] = 0xAB;
    ASSERT_TRUE(bridgeData(kLong, longReply, 512));
    EXPECT_EQ(bridgeData(kLong, longReply, 512)->front(), 0xAB);
    EXPECT_FALSE(bridgeData(kShort, {}, 512));
}

TEST(UsbBridge, RefusesACommandThatTheDeviceRefused) {
    Bytes reply(68 + 512);
    EXPECT_TRUE(bridgeReplyIsGood(reply));
    reply[2] = 2; // CHECK CONDITION
    EXPECT_FALSE(bridgeReplyIsGood(reply));
    EXPECT_FALSE(bridgeData(kShort, reply, 512));
    EXPECT_FALSE(bridgeReplyIsGood({}));
    EXPECT_FALSE(bridgeReplyIsGood(Bytes(2)));
}

TEST(UsbBridge, TellsIdentifyDataFromZerosAndFromItsOwnRequest) {
    Bytes data(4096);
    EXPECT_FALSE(isBridgeIdentifyData(data)) << "sum 0";
    const BridgeBlock block = bridgeIdentifyBlock();
    std::copy(block.begin(), block.end(), data.begin());
    EXPECT_FALSE(isBridgeIdentifyData(data)) << "the block itself, sum 317";
    data[512] = 1;
    EXPECT_FALSE(isBridgeIdentifyData(data)) << "only the first 512 bytes count";
    data[511] = 1;
    EXPECT_TRUE(isBridgeIdentifyData(data)) << "sum 318";
    data[511] = 0;
    data[0] = static_cast<std::uint8_t>(data[0] - 1);
    EXPECT_TRUE(isBridgeIdentifyData(data)) << "sum 316";
    EXPECT_TRUE(isBridgeIdentifyData(Bytes(512, 0xFF)));
    EXPECT_FALSE(isBridgeIdentifyData({}));
}

TEST(UsbBridge, TellsAHealthLogFromZeros) {
    Bytes data(512);
    EXPECT_FALSE(isBridgeHealthData(data));
    data[511] = 1;
    EXPECT_TRUE(isBridgeHealthData(data));
    data[511] = 0;
    const BridgeBlock echoed = bridgeIdentifyBlock();
    EXPECT_TRUE(isBridgeHealthData(echoed)) << "only zeros are refused";
}

} // namespace
} // namespace torvane
