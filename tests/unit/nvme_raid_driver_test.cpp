#include "monitoring/nvme_raid_driver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace torvane {
namespace {

/// What a request holds, byte for byte; made by hand from the driver's layout.
RaidBuffer expectedRequest(std::uint8_t pathId, std::uint32_t dword0, std::uint32_t namespaceId,
                           std::uint32_t dword10) {
    RaidBuffer expected{};
    storeLe<std::uint32_t>(expected, 0, 28);
    const std::string signature = "IntelNvm";
    std::copy(signature.begin(), signature.end(), expected.begin() + 4);
    storeLe<std::uint32_t>(expected, 12, 10);
    storeLe<std::uint32_t>(expected, 16, 0xF0002808);
    storeLe<std::uint32_t>(expected, 20, 0);
    storeLe<std::uint32_t>(expected, 24, 4232);
    expected[28] = 1;
    expected[29] = pathId;
    storeLe<std::uint32_t>(expected, 32, dword0);
    storeLe<std::uint32_t>(expected, 36, namespaceId);
    storeLe<std::uint32_t>(expected, 72, dword10);
    expected[96] = 0; // not of the I/O command set
    storeLe<std::uint32_t>(expected, 116, 164);
    storeLe<std::uint32_t>(expected, 120, 4096);
    return expected;
}

TEST(RaidDriver, RequestsHaveEveryByteInItsPlace) {
    static_assert(kRaidRequestSize == 4260);
    EXPECT_EQ(raidRequest(0, kRaidIdentifyNamespace), expectedRequest(0, 6, 1, 0));
    EXPECT_EQ(raidRequest(3, kRaidIdentifyController), expectedRequest(3, 6, 0, 1));
    EXPECT_EQ(raidRequest(255, kRaidGetHealthLog), expectedRequest(255, 2, 0xFFFFFFFF, 0x007F0002));
}

TEST(RaidDriver, TakesTheDataAtItsOffset) {
    std::vector<std::uint8_t> reply(kRaidRequestSize);
    reply[164] = 0xAB;
    reply.back() = 0xCD;
    const auto data = raidData(reply, 4096);
    ASSERT_TRUE(data);
    EXPECT_EQ(data->front(), 0xAB);
    EXPECT_EQ(data->back(), 0xCD);
    EXPECT_EQ(raidData(reply, 512)->size(), 512U);
}

TEST(RaidDriver, RefusesAFailureAndAReplyThatIsTooShort) {
    std::vector<std::uint8_t> reply(164 + 512);
    EXPECT_TRUE(raidData(reply, 512));
    EXPECT_FALSE(raidData(reply, 513));
    EXPECT_FALSE(raidData({}, 512));
    for (std::size_t i = 20; i < 24; ++i) { // the return code
        std::vector<std::uint8_t> failed = reply;
        failed[i] = 1;
        EXPECT_FALSE(raidData(failed, 512)) << i;
    }
}

TEST(RaidDriver, IdentifyDataHasAModel) {
    std::vector<std::uint8_t> data(4096);
    EXPECT_FALSE(isRaidIdentifyData(data));
    EXPECT_FALSE(isRaidIdentifyData({}));
    std::fill_n(data.begin() + 24, 40, std::uint8_t{' '});
    EXPECT_FALSE(isRaidIdentifyData(data)) << "blanks are no model";
    data[23] = 'S';
    data[64] = 'F';
    EXPECT_FALSE(isRaidIdentifyData(data)) << "serial number and firmware are no model";
    for (const std::size_t at : {24U, 63U}) {
        std::vector<std::uint8_t> named = data;
        named[at] = 'M';
        EXPECT_TRUE(isRaidIdentifyData(named)) << at;
        EXPECT_FALSE(isRaidIdentifyData(ByteView(named).first(at))) << at;
    }
}

TEST(RaidDriver, AHealthLogIsNotAllZeros) {
    std::vector<std::uint8_t> data(512);
    EXPECT_FALSE(isRaidHealthData(data));
    data.back() = 1;
    EXPECT_TRUE(isRaidHealthData(data));
}

} // namespace
} // namespace torvane
