#include "copy/engine/flush_behind.h"

#include "copy/engine/whole_sectors.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <future>
#include <vector>

namespace torvane {
namespace {

constexpr TransferOutcome kWhole = TransferOutcome::kWhole;
constexpr TransferOutcome kFailed = TransferOutcome::kFailed;
constexpr TransferOutcome kGone = TransferOutcome::kGone;

/// A medium whose flushes end as they are told, the first with the first outcome.
class FlushBehindTest : public ::testing::Test {
  protected:
    void store(std::uint64_t blocks, TransferOutcome outcome = kWhole) {
        for (std::uint64_t block = 0; block < blocks; ++block) {
            flushing_.stored({.offset = 100 * next_++, .length = 100}, outcome);
        }
    }

    std::uint64_t next_ = 0; ///< the block that is stored next; each has 100 bytes

    std::vector<TransferOutcome> outcomes_;
    std::atomic<std::size_t> flushes_{0};
    FlushBehind flushing_{[this] {
        const std::size_t number = flushes_++;
        return number < outcomes_.size() ? outcomes_[number] : kWhole;
    }};
};

TEST_F(FlushBehindTest, NothingIsFlushedWhereNothingWasStored) {
    store(3, kFailed);
    EXPECT_EQ(flushing_.finish(UnflushedBlocks::kFlush), kWhole);
    EXPECT_EQ(flushes_, 0U);
}

TEST_F(FlushBehindTest, WhatNobodyHasWaitedForIsUnconfirmed) {
    EXPECT_TRUE(flushing_.unconfirmed().empty());
    store(kBlocksBetweenFlushes);
    const BlockExtent first{.offset = 0, .length = 100 * kBlocksBetweenFlushes};
    EXPECT_EQ(flushing_.unconfirmed(), std::vector{first}) << "its flush may be under way";
    store(1);
    EXPECT_EQ(flushing_.unconfirmed(), (std::vector{first, BlockExtent{.offset = first.length, .length = 100}}));
    store(kBlocksBetweenFlushes - 1);
    EXPECT_EQ(flushing_.unconfirmed(), (std::vector{BlockExtent{.offset = first.length, .length = first.length}}));
}

TEST_F(FlushBehindTest, FlushesAsItGoesAndTheRestAtTheEnd) {
    store(2 * kBlocksBetweenFlushes + 1);
    EXPECT_EQ(flushing_.finish(UnflushedBlocks::kFlush), kWhole);
    EXPECT_EQ(flushes_, 3U);
    EXPECT_EQ(flushing_.finish(UnflushedBlocks::kFlush), kWhole);
    EXPECT_EQ(flushes_, 3U) << "there was nothing left";
}

TEST_F(FlushBehindTest, AFlushThatFailedOnTheWayIsToldAtTheEnd) {
    outcomes_ = {kWhole, kFailed, kGone};
    store(4 * kBlocksBetweenFlushes + 1);
    EXPECT_EQ(flushing_.finish(UnflushedBlocks::kFlush), kFailed);
    EXPECT_EQ(flushes_, 5U);
}

TEST_F(FlushBehindTest, BlocksThatAreLeftAreNotFlushedButFailuresOnTheWayAreTold) {
    store(kBlocksBetweenFlushes + 1);
    EXPECT_EQ(flushing_.finish(UnflushedBlocks::kLeave), kWhole);
    EXPECT_EQ(flushes_, 1U);
    outcomes_ = {kWhole, kFailed};
    store(kBlocksBetweenFlushes);
    EXPECT_EQ(flushing_.finish(UnflushedBlocks::kLeave), kFailed);
    EXPECT_EQ(flushes_, 2U);
}

TEST_F(FlushBehindTest, TheLastFlushMayFailToo) {
    outcomes_ = {kGone};
    store(1);
    EXPECT_EQ(flushing_.finish(UnflushedBlocks::kFlush), kGone);
}

TEST_F(FlushBehindTest, ADeviceThatIsGoneIsNotAsked) {
    store(1);
    store(1, kGone);
    EXPECT_EQ(flushing_.finish(UnflushedBlocks::kFlush), TransferOutcome::kNotReached);
    EXPECT_EQ(flushes_, 0U);
}

TEST_F(FlushBehindTest, ADeviceThatCameBackIsAsked) {
    store(1, kGone);
    store(1);
    EXPECT_EQ(flushing_.finish(UnflushedBlocks::kFlush), kWhole);
    EXPECT_EQ(flushes_, 1U);
}

using Places = std::vector<BlockExtent>;

TEST_F(FlushBehindTest, WhatNoFlushHasFailedOnIsNotDoubtful) {
    store(kBlocksBetweenFlushes + 1);
    EXPECT_EQ(flushing_.finish(UnflushedBlocks::kLeave), kWhole);
    EXPECT_EQ(flushing_.doubtful(), Places());
}

TEST_F(FlushBehindTest, TheBlocksOfEachFlushThatFailedAreDoubtful) {
    outcomes_ = {kWhole, kFailed, kWhole, kFailed};
    store(kBlocksBetweenFlushes);
    store(1, kFailed);
    store(2 * kBlocksBetweenFlushes + 2);
    EXPECT_EQ(flushing_.finish(UnflushedBlocks::kFlush), kFailed);
    EXPECT_EQ(flushing_.doubtful(),
              (Places{{.offset = 500, .length = 400}, {.offset = 900, .length = 400}, {.offset = 1300, .length = 200}}))
        << "also what was stored while the flush was under way";
}

TEST_F(FlushBehindTest, DoubtfulPlacesAreTheSameInReverse) {
    outcomes_ = {kFailed};
    flushing_.stored({.offset = 300, .length = 100}, kWhole);
    flushing_.stored({.offset = 200, .length = 100}, kWhole);
    EXPECT_EQ(flushing_.finish(UnflushedBlocks::kFlush), kFailed);
    EXPECT_EQ(flushing_.doubtful(), (Places{{.offset = 200, .length = 200}}));
}

TEST_F(FlushBehindTest, WhatADeviceHadNotFlushedWhenItWentIsDoubtfulAlsoWhenItIsBack) {
    store(kBlocksBetweenFlushes + 2);
    store(1, kGone);
    store(1);
    EXPECT_EQ(flushing_.finish(UnflushedBlocks::kFlush), kWhole);
    EXPECT_EQ(flushing_.doubtful(), (Places{{.offset = 400, .length = 200}}));
}

TEST(FlushBehind, TheNextBlocksAreStoredWhileTheOnesBeforeThemAreFlushed) {
    std::promise<void> stored;
    std::shared_future<void> mayEnd = stored.get_future().share();
    FlushBehind flushing([mayEnd] {
        mayEnd.wait();
        return kWhole;
    });
    for (std::uint64_t block = 0; block < 2 * kBlocksBetweenFlushes - 1; ++block) {
        flushing.stored({}, kWhole); // the last of them would never return if it waited for the flush
    }
    stored.set_value();
    EXPECT_EQ(flushing.finish(UnflushedBlocks::kFlush), kWhole);
}

TEST(FlushBehind, NoMoreThanTwoRoundsOfBlocksWaitForTheMedium) {
    std::atomic<std::uint64_t> blocks{0};
    std::atomic<std::uint64_t> flushed{0};
    FlushBehind flushing([&] {
        const std::uint64_t here = blocks;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        flushed = here;
        return kWhole;
    });
    for (int block = 0; block < 40; ++block) {
        ++blocks;
        flushing.stored({}, kWhole);
        EXPECT_LE(blocks - flushed, 2 * kBlocksBetweenFlushes);
    }
    EXPECT_EQ(flushing.finish(UnflushedBlocks::kFlush), kWhole);
    EXPECT_EQ(flushed, 40U);
}

TEST(FlushBehind, ItsEndWaitsForAFlushUnderWay) {
    std::atomic<bool> ended{false};
    {
        FlushBehind flushing([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            ended = true;
            return kWhole;
        });
        for (std::uint64_t block = 0; block < kBlocksBetweenFlushes; ++block) {
            flushing.stored({}, kWhole);
        }
    }
    EXPECT_TRUE(ended);
}

TEST(WholeSectors, AreWhatPlaceLengthAndMemoryAllow) {
    alignas(8192) static std::array<std::byte, 4 * 4096 + 8> memory;
    const std::span<const std::byte> all(memory);
    EXPECT_EQ(wholeSectors(0, all.first(4 * 4096), 4096), 4U * 4096);
    EXPECT_EQ(wholeSectors(8192, all.first(2 * 4096 + 100), 4096), 2U * 4096);
    EXPECT_EQ(wholeSectors(0, all.first(100), 4096), 0U);
    EXPECT_EQ(wholeSectors(512, all.first(4096), 4096), 0U) << "the place";
    EXPECT_EQ(wholeSectors(0, all.subspan(8), 4096), 0U) << "the memory";
    EXPECT_EQ(wholeSectors(0, all.subspan(4096, 8192), 8192), 0U) << "the memory, of larger sectors";
    EXPECT_EQ(wholeSectors(8192, all.first(3 * 4096), 8192), 8192U);
}

TEST(WholeSectors, FourKibibytesUnlessTheVolumeHasLargerOnes) {
    EXPECT_EQ(unbufferedAlignment(0), 4096U);
    EXPECT_EQ(unbufferedAlignment(512), 4096U);
    EXPECT_EQ(unbufferedAlignment(4096), 4096U);
    EXPECT_EQ(unbufferedAlignment(16384), 16384U);
    EXPECT_EQ(unbufferedAlignment(5000), 4096U) << "no size of a sector";
}

} // namespace
} // namespace torvane
