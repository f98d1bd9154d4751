#include "discovery/nvme_storage_query.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace torvane {
namespace {

/// The request's twelve words; everything behind them must be zero.
std::vector<std::uint32_t> wordsOf(const StorageQueryBuffer& buffer) {
    EXPECT_TRUE(std::all_of(buffer.begin() + 48, buffer.end(), [](std::uint8_t byte) { return byte == 0; }));
    std::vector<std::uint32_t> words;
    for (std::size_t offset = 0; offset < 48; offset += 4) {
        words.push_back(loadLe32(buffer, offset));
    }
    return words;
}

TEST(StorageQuery, AsksForTheControllersIdentity) {
    static_assert(kStorageQuerySize == 4144);
    EXPECT_EQ(wordsOf(storageQueryIdentifyRequest()),
              (std::vector<std::uint32_t>{49, 0, 3, 1, 1, 0, 40, 4096, 0, 0, 0, 0}));
}

TEST(StorageQuery, AsksForTheHealthLogOfTheControllerOrOfAllNamespaces) {
    EXPECT_EQ(wordsOf(storageQueryHealthRequest(0)),
              (std::vector<std::uint32_t>{49, 0, 3, 2, 2, 0, 40, 4096, 0, 0, 0, 0}));
    EXPECT_EQ(wordsOf(storageQueryHealthRequest(0xFFFFFFFF)),
              (std::vector<std::uint32_t>{49, 0, 3, 2, 2, 0xFFFFFFFF, 40, 4096, 0, 0, 0, 0}));
}

TEST(StorageQuery, TakesTheDataBehindTheReplysHeader) {
    std::vector<std::uint8_t> reply(kStorageQuerySize);
    reply[48] = 0xAB;
    reply[48 + 511] = 0xCD;
    const auto data = storageQueryData(reply, 512);
    ASSERT_TRUE(data);
    EXPECT_EQ(data->size(), 512U);
    EXPECT_EQ(data->front(), 0xAB);
    EXPECT_EQ(data->back(), 0xCD);
    EXPECT_TRUE(storageQueryData(reply, 4096));
}

TEST(StorageQuery, RefusesAReplyThatIsTooShort) {
    const std::vector<std::uint8_t> reply(48 + 512);
    EXPECT_TRUE(storageQueryData(reply, 512));
    EXPECT_FALSE(storageQueryData(ByteView(reply).first(48 + 511), 512));
    EXPECT_FALSE(storageQueryData(reply, 4096));
    EXPECT_FALSE(storageQueryData({}, 512));
}

} // namespace
} // namespace torvane
