#include "copy/engine/block_sink.h"
#include "tests/unit/numbered_blocks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <string>

namespace torvane {
namespace {

using ::testing::ElementsAre;
using testing::NumberedBlocks;

std::string textOf(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Keeps what it was given; ends as it is told, and only when it may.
class RecordingSink : public BlockSink {
  public:
    TransferOutcome store(const BlockExtent& extent, std::span<const std::byte> bytes) override {
        stored.push_back(extent);
        text += textOf(bytes);
        if (mayEnd.valid()) {
            mayEnd.get();
        }
        return outcome;
    }

    TransferOutcome flush(UnflushedBlocks) override { return flushOutcome; }
    const std::vector<BlockExtent>& doubtful() const override { return doubts; }
    std::vector<BlockExtent> unconfirmed() const override { return doubts; }

    TransferOutcome outcome = TransferOutcome::kWhole;
    TransferOutcome flushOutcome = TransferOutcome::kWhole;
    std::vector<BlockExtent> stored;
    std::vector<BlockExtent> doubts;
    std::string text;
    std::future<void> mayEnd;
};

/// Fails from the block of a number on, and tells when it was given the block of another one.
class RecordingHasher : public BlockHasher {
  public:
    bool add(std::span<const std::byte> bytes) override {
        if (blocks == toldAt) {
            given.set_value();
        }
        if (blocks++ == failsAt) {
            return false;
        }
        text += textOf(bytes);
        return true;
    }
    bool finish(std::span<std::uint8_t>) override { return false; }

    std::string text;
    int blocks = 0;
    int failsAt = -1;
    int toldAt = -1;
    std::promise<void> given;
};

/// A drive of four bytes a block, three blocks and half a one, on its way into a sink with a digest.
class HashingSinkTest : public ::testing::Test {
  protected:
    void begin() { blocks_.start(); }
    TransferOutcome storeNext(HashingSink& sink) {
        const Block block = blocks_.take();
        return sink.store(block.extent, block.bytes);
    }

    NumberedBlocks source_;
    BlockPipeline blocks_{source_, BlockOrder::forward(14, 4)};
    RecordingSink inner_;
    RecordingHasher hasher_;
};

TEST_F(HashingSinkTest, HashesWhatItStores) {
    HashingSink sink(inner_, hasher_, blocks_);
    begin();
    for (int block = 0; block < 4; ++block) {
        EXPECT_EQ(storeNext(sink), TransferOutcome::kWhole);
        EXPECT_TRUE(sink.hashedAll());
    }
    EXPECT_THAT(inner_.stored,
                ElementsAre(BlockExtent{0, 4}, BlockExtent{4, 4}, BlockExtent{8, 4}, BlockExtent{12, 2}));
    EXPECT_EQ(inner_.text, "00001111222233");
    EXPECT_EQ(hasher_.text, "00001111222233");
}

TEST_F(HashingSinkTest, HashesABlockWhileTheOneBeforeItIsStored) {
    hasher_.toldAt = 1;
    inner_.mayEnd = hasher_.given.get_future(); // it would never end if the hash waited for it
    HashingSink sink(inner_, hasher_, blocks_);
    begin();
    EXPECT_EQ(storeNext(sink), TransferOutcome::kWhole);
    EXPECT_TRUE(sink.hashedAll());
}

// A job that is stopped between the two has a digest of what is in the image.
TEST_F(HashingSinkTest, DoesNotHashTheRemainderBeforeItIsStored) {
    {
        HashingSink sink(inner_, hasher_, blocks_);
        begin();
        for (int block = 0; block < 3; ++block) {
            EXPECT_EQ(storeNext(sink), TransferOutcome::kWhole);
        }
        EXPECT_TRUE(source_.awaitBegun(4));
    }
    EXPECT_EQ(hasher_.text, "000011112222");
}

TEST_F(HashingSinkTest, HashesWhatTheJobHasMadeOfABlockThatCouldNotBeRead) {
    source_.outcomes = {TransferOutcome::kWhole, TransferOutcome::kFailed};
    HashingSink sink(inner_, hasher_, blocks_);
    begin();
    EXPECT_EQ(storeNext(sink), TransferOutcome::kWhole);
    const Block bad = blocks_.take();
    std::fill(bad.bytes.begin(), bad.bytes.end(), std::byte{'m'});
    EXPECT_EQ(sink.store(bad.extent, bad.bytes), TransferOutcome::kWhole);
    EXPECT_TRUE(sink.hashedAll());
    EXPECT_EQ(hasher_.text, "0000mmmm");
}

TEST_F(HashingSinkTest, HashesABlockThatCannotBeStoredAndTellsWhyNot) {
    inner_.outcome = TransferOutcome::kGone;
    HashingSink sink(inner_, hasher_, blocks_);
    begin();
    EXPECT_EQ(storeNext(sink), TransferOutcome::kGone);
    EXPECT_TRUE(sink.hashedAll());
}

TEST_F(HashingSinkTest, TellsOfABlockThatCouldNotBeHashedWhenThatBlockWasStored) {
    hasher_.failsAt = 1;
    HashingSink sink(inner_, hasher_, blocks_);
    begin();
    EXPECT_EQ(storeNext(sink), TransferOutcome::kWhole);
    EXPECT_TRUE(sink.hashedAll()) << "the block that fails is another one";
    EXPECT_EQ(storeNext(sink), TransferOutcome::kWhole);
    EXPECT_FALSE(sink.hashedAll());
    EXPECT_EQ(storeNext(sink), TransferOutcome::kWhole);
    EXPECT_FALSE(sink.hashedAll());
    EXPECT_EQ(hasher_.text, "0000") << "nothing is added behind a gap";
}

/// A second digest of the same blocks, around the first.
class TwoDigestsTest : public HashingSinkTest {
  protected:
    RecordingHasher other_;
};

TEST_F(TwoDigestsTest, BothGetEveryBlockInOrder) {
    HashingSink md5(inner_, hasher_, blocks_);
    HashingSink both(md5, other_, blocks_);
    begin();
    for (int block = 0; block < 4; ++block) {
        EXPECT_EQ(storeNext(both), TransferOutcome::kWhole);
        EXPECT_TRUE(md5.hashedAll());
        EXPECT_TRUE(both.hashedAll());
    }
    EXPECT_EQ(inner_.text, "00001111222233");
    EXPECT_EQ(hasher_.text, "00001111222233");
    EXPECT_EQ(other_.text, "00001111222233");
}

// Each is the other's and the medium's company: none of the three would end if it had to wait for its turn.
TEST_F(TwoDigestsTest, AreMadeBesideEachOtherAndBesideStoring) {
    hasher_.toldAt = 1;
    other_.toldAt = 1;
    inner_.mayEnd = std::async(std::launch::deferred, [&] {
        hasher_.given.get_future().get();
        other_.given.get_future().get();
    });
    HashingSink md5(inner_, hasher_, blocks_);
    HashingSink both(md5, other_, blocks_);
    begin();
    EXPECT_EQ(storeNext(both), TransferOutcome::kWhole);
}

TEST_F(TwoDigestsTest, TellWhichOfThemHasFailed) {
    other_.failsAt = 1;
    HashingSink md5(inner_, hasher_, blocks_);
    HashingSink both(md5, other_, blocks_);
    begin();
    for (int block = 0; block < 4; ++block) {
        EXPECT_EQ(storeNext(both), TransferOutcome::kWhole);
        EXPECT_TRUE(md5.hashedAll());
        EXPECT_EQ(both.hashedAll(), block == 0);
    }
    EXPECT_EQ(hasher_.text, "00001111222233");
    EXPECT_EQ(other_.text, "0000");
}

TEST_F(TwoDigestsTest, NeitherHashesTheRemainderBeforeItIsStored) {
    {
        HashingSink md5(inner_, hasher_, blocks_);
        HashingSink both(md5, other_, blocks_);
        begin();
        for (int block = 0; block < 3; ++block) {
            EXPECT_EQ(storeNext(both), TransferOutcome::kWhole);
        }
        EXPECT_TRUE(source_.awaitBegun(4));
    }
    EXPECT_EQ(hasher_.text, "000011112222");
    EXPECT_EQ(other_.text, "000011112222");
}

TEST_F(HashingSinkTest, PassesAFlushOn) {
    inner_.flushOutcome = TransferOutcome::kGone;
    HashingSink sink(inner_, hasher_, blocks_);
    EXPECT_EQ(sink.flush(UnflushedBlocks::kFlush), TransferOutcome::kGone);
}

TEST_F(HashingSinkTest, MayEndWhileItWaitsForBlocks) {
    const HashingSink sink(inner_, hasher_, blocks_);
}

} // namespace
} // namespace torvane
