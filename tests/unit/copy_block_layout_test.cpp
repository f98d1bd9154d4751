#include "copy/engine/block_layout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

namespace torvane {

static void PrintTo(const BlockSplit& split, std::ostream* out) {
    *out << split.fullBlocks << " blocks and " << split.remainder;
}
static void PrintTo(const BlockExtent& extent, std::ostream* out) {
    *out << extent.length << " at " << extent.offset;
}

namespace {

constexpr std::uint64_t kBlock = 33554432;

TEST(SplitIntoBlocks, CountsFullBlocksAndWhatIsLeft) {
    EXPECT_EQ(kCopyBlockSize, kBlock);
    EXPECT_EQ(SplitIntoBlocks(0), (BlockSplit{0, 0}));
    EXPECT_EQ(SplitIntoBlocks(1), (BlockSplit{0, 1}));
    EXPECT_EQ(SplitIntoBlocks(kBlock - 1), (BlockSplit{0, kBlock - 1}));
    EXPECT_EQ(SplitIntoBlocks(kBlock), (BlockSplit{1, 0}));
    EXPECT_EQ(SplitIntoBlocks(kBlock + 1), (BlockSplit{1, 1}));
    EXPECT_EQ(SplitIntoBlocks(5 * kBlock), (BlockSplit{5, 0}));
    EXPECT_EQ(SplitIntoBlocks(500107862016), (BlockSplit{14904, 12607488}));
}

TEST(SplitIntoBlocks, DividesUnsigned) {
    EXPECT_EQ(SplitIntoBlocks(std::numeric_limits<std::uint64_t>::max()), (BlockSplit{549755813887, kBlock - 1}));
}

std::vector<BlockExtent> extents(const BlockOrder& order) {
    std::vector<BlockExtent> all;
    all.reserve(order.count());
    for (std::uint64_t index = 0; index < order.count(); ++index) {
        all.push_back(order.extent(index));
    }
    return all;
}

TEST(BlockOrder, ForwardBeginsAtTheStartAndEndsWithTheRemainder) {
    EXPECT_EQ(extents(BlockOrder::forward(0, 16)), (std::vector<BlockExtent>{}));
    EXPECT_EQ(extents(BlockOrder::forward(5, 16)), (std::vector<BlockExtent>{{0, 5}}));
    EXPECT_EQ(extents(BlockOrder::forward(32, 16)), (std::vector<BlockExtent>{{0, 16}, {16, 16}}));
    EXPECT_EQ(extents(BlockOrder::forward(37, 16)), (std::vector<BlockExtent>{{0, 16}, {16, 16}, {32, 5}}));
}

TEST(BlockOrder, ReverseCountsFullBlocksBackFromTheEndAndLeavesTheRemainderAtTheStart) {
    EXPECT_EQ(extents(BlockOrder::reverse(0, 16)), (std::vector<BlockExtent>{}));
    EXPECT_EQ(extents(BlockOrder::reverse(5, 16)), (std::vector<BlockExtent>{{0, 5}}));
    EXPECT_EQ(extents(BlockOrder::reverse(32, 16)), (std::vector<BlockExtent>{{16, 16}, {0, 16}}));
    EXPECT_EQ(extents(BlockOrder::reverse(37, 16)), (std::vector<BlockExtent>{{21, 16}, {5, 16}, {0, 5}}));
}

TEST(BlockOrder, BothDirectionsCoverTheSameBytesOnce) {
    for (std::uint64_t bytes = 0; bytes < 100; ++bytes) {
        for (const BlockOrder& order : {BlockOrder::forward(bytes, 16), BlockOrder::reverse(bytes, 16)}) {
            std::vector<int> touched(bytes);
            for (const BlockExtent& extent : extents(order)) {
                ASSERT_LE(extent.offset + extent.length, bytes);
                for (std::size_t i = 0; i < extent.length; ++i) {
                    ++touched[extent.offset + i];
                }
            }
            EXPECT_EQ(std::count(touched.begin(), touched.end(), 1), static_cast<std::ptrdiff_t>(bytes));
        }
    }
}

TEST(BlockOrder, ReachesBeyondFourGigabytes) {
    constexpr std::uint64_t kBytes = 64ULL << 30;
    EXPECT_EQ(BlockOrder::forward(kBytes, kBlock).extent(2047), (BlockExtent{kBytes - kBlock, kBlock}));
    EXPECT_EQ(BlockOrder::reverse(kBytes, kBlock).extent(0), (BlockExtent{kBytes - kBlock, kBlock}));
}

std::string marked(std::size_t length) {
    std::string bytes(length, '.');
    fillWithUnreadableMarker(std::as_writable_bytes(std::span(bytes)));
    return bytes;
}

TEST(UnreadableMarker, FillsABlockWithSixteenBytesOverAndOver) {
    EXPECT_EQ(marked(16), "KVL<->UNREADABLE");
    EXPECT_EQ(marked(32), "KVL<->UNREADABLEKVL<->UNREADABLE");
    const std::string block = marked(kCopyBlockSize);
    for (std::size_t i = 0; i < 2097152; ++i) {
        ASSERT_EQ(block.compare(16 * i, 16, "KVL<->UNREADABLE"), 0) << "copy " << i;
    }
}

TEST(UnreadableMarker, LeavesWhatIsShorterThanAMarker) {
    EXPECT_EQ(marked(0), "");
    EXPECT_EQ(marked(15), "...............");
    EXPECT_EQ(marked(20), "KVL<->UNREADABLE....");
}

TEST(SectorOfOffset, DividesByTheSectorSize) {
    EXPECT_EQ(sectorOfOffset(0, 512), 0);
    EXPECT_EQ(sectorOfOffset(0x2000000, 512), 65536);
    EXPECT_EQ(sectorOfOffset(0x2000000, 4096), 8192);
    EXPECT_EQ(sectorOfOffset(1023, 512), 1);
    EXPECT_EQ(sectorOfOffset(8ULL << 40, 512), 17179869184);
    EXPECT_EQ(sectorOfOffset(1024, -512), -2);
}

TEST(SectorOfOffset, OfTheLeastNumberDoesNotOverflow) {
    EXPECT_EQ(sectorOfOffset(1ULL << 63, -1), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(sectorOfOffset(1024, -1), -1024);
}

TEST(SectorOfOffset, TakesAnUnknownSectorSizeAsTheUsualOne) {
    EXPECT_EQ(sectorOfOffset(1024, 0), 2);
}

} // namespace
} // namespace torvane
