#include "copy/engine/block_pipeline.h"

#include "tests/unit/numbered_blocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <string>
#include <vector>

namespace torvane {
namespace {

using namespace std::chrono_literals;
using testing::NumberedBlocks;

std::string textOf(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string textOf(const Block& block) {
    return textOf(block.bytes);
}

/// Long enough for a thread that wrongly goes on to be caught at it.
constexpr auto kForAWhile = 50ms;

TEST(BlockPipeline, BlocksOfTheUsualSizeBeginWhereUnbufferedTransfersMay) {
    NumberedBlocks source;
    source.allow(100);
    BlockPipeline blocks(source, BlockOrder::forward(5 * kBufferAlignment, kBufferAlignment));
    ASSERT_TRUE(blocks.hasBuffers());
    blocks.start();
    for (int block = 0; block < 5; ++block) {
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(blocks.take().bytes.data()) % kBufferAlignment, 0U);
    }
}

TEST(BlockPipeline, WithoutMemoryForItsBlocksItHasNoBuffers) {
    NumberedBlocks source;
    const auto hasBuffers = [&](std::size_t blockSize) {
        return BlockPipeline(source, BlockOrder::forward(1, blockSize)).hasBuffers();
    };
    constexpr std::size_t kMost = ~std::size_t{0};
    EXPECT_FALSE(hasBuffers(kMost));
    EXPECT_FALSE(hasBuffers(kMost / 2 + 1));
    EXPECT_FALSE(hasBuffers(kMost / 4 + 1));
    EXPECT_FALSE(hasBuffers(kMost / 4));
    EXPECT_TRUE(hasBuffers(1));
}

TEST(BlockPipeline, DeliversTheBlocksInOrder) {
    NumberedBlocks source;
    BlockPipeline blocks(source, BlockOrder::forward(35, 4));
    ASSERT_TRUE(blocks.hasBuffers());
    blocks.start();
    for (int number = 0; number < 8; ++number) {
        const Block block = blocks.take();
        EXPECT_EQ(block.extent, (BlockExtent{static_cast<std::uint64_t>(number) * 4, 4}));
        EXPECT_EQ(block.outcome, TransferOutcome::kWhole);
        EXPECT_EQ(textOf(block), std::string(4, static_cast<char>('0' + number)));
    }
    EXPECT_EQ(textOf(blocks.take()), "888");
}

TEST(BlockPipeline, DeliversTheSameWithoutAThread) {
    NumberedBlocks source;
    source.outcomes = {TransferOutcome::kWhole, TransferOutcome::kNotReached, TransferOutcome::kFailed};
    source.partOfFailedRead = 2;
    BlockPipeline blocks(source, BlockOrder::forward(13, 3));
    EXPECT_EQ(textOf(blocks.take()), "000");
    EXPECT_EQ(textOf(blocks.take()), "000");
    EXPECT_EQ(textOf(blocks.take()), "xx0");
    EXPECT_EQ(source.begun(), 3U);
    EXPECT_EQ(textOf(blocks.take()), "333");
    EXPECT_EQ(textOf(blocks.take()), "4");
}

TEST(BlockPipeline, StaysSoManyBlocksAheadAndNoMore) {
    constexpr std::size_t kFirstAndAhead = BlockPipeline::kBlocksAhead + 1;
    NumberedBlocks source;
    BlockPipeline blocks(source, BlockOrder::forward(100, 4));
    blocks.start();
    ASSERT_TRUE(source.awaitBegun(kFirstAndAhead));
    std::this_thread::sleep_for(kForAWhile);
    EXPECT_EQ(source.begun(), kFirstAndAhead) << "the block to be taken first, and those ahead of it";
    static_cast<void>(blocks.take());
    std::this_thread::sleep_for(kForAWhile);
    EXPECT_EQ(source.begun(), kFirstAndAhead) << "block 0 is in the job's hands";
    static_cast<void>(blocks.take());
    ASSERT_TRUE(source.awaitBegun(kFirstAndAhead + 1));
    std::this_thread::sleep_for(kForAWhile);
    EXPECT_EQ(source.begun(), kFirstAndAhead + 1);
}

TEST(BlockPipeline, StaysNoFurtherAheadThanItIsTold) {
    NumberedBlocks source;
    BlockPipeline blocks(source, BlockOrder::forward(100, 4), 2);
    blocks.start();
    ASSERT_TRUE(source.awaitBegun(3));
    std::this_thread::sleep_for(kForAWhile);
    EXPECT_EQ(source.begun(), 3U);
    for (int number = 0; number < 25; ++number) {
        EXPECT_EQ(textOf(blocks.take()), std::string(4, static_cast<char>('0' + number)));
    }
}

TEST(BlockPipeline, WaitsAfterAFailedReadUntilTheJobTakesTheNextBlock) {
    NumberedBlocks source;
    source.outcomes = {TransferOutcome::kWhole, TransferOutcome::kFailed};
    BlockPipeline blocks(source, BlockOrder::forward(100, 4));
    blocks.start();
    ASSERT_TRUE(source.awaitBegun(2));
    static_cast<void>(blocks.take());
    const Block failed = blocks.take();
    EXPECT_EQ(failed.outcome, TransferOutcome::kFailed);
    std::this_thread::sleep_for(kForAWhile);
    EXPECT_EQ(source.begun(), 2U);
    EXPECT_EQ(textOf(blocks.take()), "2222");
}

TEST(BlockPipeline, AFailedSeekDeliversTheBlockBeforeAsTheJobLeftIt) {
    NumberedBlocks source;
    source.outcomes = {TransferOutcome::kFailed, TransferOutcome::kNotReached, TransferOutcome::kNotReached};
    BlockPipeline blocks(source, BlockOrder::forward(11, 4));
    blocks.start();
    const Block first = blocks.take();
    std::fill(first.bytes.begin(), first.bytes.end(), std::byte{'m'});
    EXPECT_EQ(textOf(blocks.take()), "mmmm");
    EXPECT_EQ(textOf(blocks.take()), "mmm");
}

TEST(BlockPipeline, BeforeTheFirstBlockThereWereZeroBytes) {
    NumberedBlocks source;
    source.outcomes = {TransferOutcome::kNotReached, TransferOutcome::kFailed};
    BlockPipeline blocks(source, BlockOrder::forward(8, 4));
    blocks.start();
    EXPECT_EQ(textOf(blocks.take()), std::string(4, '\0'));
    EXPECT_EQ(textOf(blocks.take()), std::string(4, '\0'));
}

TEST(BlockPipeline, WhatAFailedReadLeavesAloneBehindTheLastMarkerIsLeftOfTheBlockBefore) {
    NumberedBlocks source;
    source.outcomes = {TransferOutcome::kWhole, TransferOutcome::kFailed};
    source.partOfFailedRead = 18;
    BlockPipeline blocks(source, BlockOrder::forward(32 + 21, 32));
    blocks.start();
    static_cast<void>(blocks.take());
    EXPECT_EQ(textOf(blocks.take()).substr(16), "xx000");
}

TEST(BlockPipeline, StoppingLetsTheReadInFlightCompleteAndBeginsNoOther) {
    NumberedBlocks source;
    source.allow(1);
    BlockPipeline blocks(source, BlockOrder::forward(100, 4));
    blocks.start();
    static_cast<void>(blocks.take());
    ASSERT_TRUE(source.awaitBegun(2));
    std::future<void> stopped = std::async(std::launch::async, [&] { blocks.stop(); });
    EXPECT_EQ(stopped.wait_for(kForAWhile), std::future_status::timeout) << "a read is in flight";
    source.allow(1000);
    stopped.wait();
    EXPECT_EQ(source.begun(), 2U);
    EXPECT_EQ(source.done(), 2U);
}

TEST(BlockPipeline, StoppingTwiceOrBeforeAnythingIsTakenIsHarmless) {
    NumberedBlocks source;
    BlockPipeline blocks(source, BlockOrder::forward(100, 4));
    blocks.start();
    blocks.stop();
    blocks.stop();
    BlockPipeline never(source, BlockOrder::forward(100, 4));
    never.stop();
}

TEST(BlockPipeline, AnEmptyJobReadsNothing) {
    NumberedBlocks source;
    BlockPipeline blocks(source, BlockOrder::forward(0, 4));
    blocks.start();
    blocks.stop();
    EXPECT_EQ(source.begun(), 0U);
}

TEST(BlockPipeline, ABlockThatWasReadWholeIsFinalBeforeItIsTaken) {
    NumberedBlocks source;
    BlockPipeline blocks(source, BlockOrder::forward(12, 4));
    blocks.start();
    for (std::uint64_t number = 0; number < 3; ++number) {
        const auto bytes = blocks.awaitFinal(number);
        ASSERT_TRUE(bytes);
        EXPECT_EQ(textOf(*bytes), std::string(4, static_cast<char>('0' + number)));
    }
}

TEST(BlockPipeline, ABlockThatWasNotReadWholeIsFinalOnceTheJobHasSettledIt) {
    NumberedBlocks source;
    source.outcomes = {TransferOutcome::kFailed};
    BlockPipeline blocks(source, BlockOrder::forward(8, 4));
    blocks.start();
    auto first = std::async(std::launch::async, [&] {
        const auto bytes = blocks.awaitFinal(0);
        return bytes ? textOf(*bytes) : "none";
    });
    const Block block = blocks.take();
    EXPECT_EQ(first.wait_for(kForAWhile), std::future_status::timeout);
    std::fill(block.bytes.begin(), block.bytes.end(), std::byte{'m'});
    blocks.settle();
    EXPECT_EQ(first.get(), "mmmm");
}

// A job that is stopped before its remainder has a digest of the full blocks alone.
TEST(BlockPipeline, TheRemainderIsFinalOnceTheJobHasSettledIt) {
    NumberedBlocks source;
    BlockPipeline blocks(source, BlockOrder::forward(6, 4));
    blocks.start();
    EXPECT_TRUE(source.awaitBegun(2));
    auto remainder = std::async(std::launch::async, [&] { return blocks.awaitFinal(1).has_value(); });
    static_cast<void>(blocks.take());
    blocks.settle();
    static_cast<void>(blocks.take());
    EXPECT_EQ(remainder.wait_for(kForAWhile), std::future_status::timeout);
    blocks.settle();
    EXPECT_TRUE(remainder.get());
}

TEST(BlockPipeline, WhoeverWaitsForABlockIsToldThatNoneComes) {
    NumberedBlocks source;
    source.allow(0);
    BlockPipeline blocks(source, BlockOrder::forward(8, 4));
    auto waiting = std::async(std::launch::async, [&] { return blocks.awaitFinal(0).has_value(); });
    blocks.stop();
    EXPECT_FALSE(waiting.get());
}

} // namespace
} // namespace torvane
