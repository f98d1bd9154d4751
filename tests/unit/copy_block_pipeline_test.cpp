#include "copy/engine/block_pipeline.h"

#include "copy/engine/hash_thread.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <mutex>
#include <string>
#include <vector>

namespace torvane {
namespace {

using namespace std::chrono_literals;

/// Blocks that hold their own number; a test may hold back and fail reads.
class NumberedBlocks : public BlockSource {
  public:
    TransferOutcome fetch(const BlockExtent& extent, std::span<std::byte> bytes) override {
        std::unique_lock lock(mutex_);
        const std::size_t number = begun_.size();
        begun_.push_back(extent);
        changed_.notify_all();
        changed_.wait(lock, [&] { return number < allowed_; });
        const TransferOutcome outcome = number < outcomes.size() ? outcomes[number] : TransferOutcome::kWhole;
        if (outcome == TransferOutcome::kWhole) {
            std::fill(bytes.begin(), bytes.end(), static_cast<std::byte>('0' + number));
        } else if (outcome == TransferOutcome::kFailed) {
            std::fill_n(bytes.begin(), std::min(bytes.size(), partOfFailedRead), std::byte{'x'});
        }
        ++done_;
        changed_.notify_all();
        return outcome;
    }

    /// Reads may go through up to this many; the next one waits.
    void allow(std::size_t reads) {
        const std::lock_guard lock(mutex_);
        allowed_ = reads;
        changed_.notify_all();
    }

    /// Waits until so many reads have begun.
    bool awaitBegun(std::size_t reads) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, 30s, [&] { return begun_.size() >= reads; });
    }

    std::size_t begun() {
        const std::lock_guard lock(mutex_);
        return begun_.size();
    }
    std::size_t done() {
        const std::lock_guard lock(mutex_);
        return done_;
    }

    std::vector<TransferOutcome> outcomes;
    std::size_t partOfFailedRead = 0;

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<BlockExtent> begun_;
    std::size_t allowed_ = 1000;
    std::size_t done_ = 0;
};

std::string textOf(const Block& block) {
    return {reinterpret_cast<const char*>(block.bytes.data()), block.bytes.size()};
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

TEST(BlockPipeline, StaysTwoBlocksAheadAndNoMore) {
    NumberedBlocks source;
    BlockPipeline blocks(source, BlockOrder::forward(100, 4));
    blocks.start();
    ASSERT_TRUE(source.awaitBegun(3));
    std::this_thread::sleep_for(kForAWhile);
    EXPECT_EQ(source.begun(), 3U) << "the block to be taken first, and two more";
    static_cast<void>(blocks.take());
    std::this_thread::sleep_for(kForAWhile);
    EXPECT_EQ(source.begun(), 3U) << "block 0 is in the job's hands";
    static_cast<void>(blocks.take());
    ASSERT_TRUE(source.awaitBegun(4));
    std::this_thread::sleep_for(kForAWhile);
    EXPECT_EQ(source.begun(), 4U);
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

class CollectingHasher : public BlockHasher {
  public:
    bool add(std::span<const std::byte> bytes) override {
        text.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        return !fails;
    }
    std::optional<Md5Digest> digest() override { return std::nullopt; }

    std::string text;
    bool fails = false;
};

TEST(HashThread, AddsBlockAfterBlock) {
    CollectingHasher hasher;
    HashThread thread(hasher);
    const std::string text = "abcdef";
    const auto bytes = std::as_bytes(std::span(text));
    thread.begin(bytes.first(2));
    EXPECT_TRUE(thread.finish());
    thread.begin(bytes.subspan(2, 3));
    EXPECT_TRUE(thread.finish());
    hasher.fails = true;
    thread.begin(bytes.last(1));
    EXPECT_FALSE(thread.finish());
    EXPECT_EQ(hasher.text, "abcdef");
}

TEST(HashThread, MayEndWithoutWork) {
    CollectingHasher hasher;
    const HashThread thread(hasher);
}

} // namespace
} // namespace torvane
