#include "copy/engine/block_io.h"

#include "copy/engine/block_layout.h"
#include "tests/unit/patterned_drive.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace torvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::PatternedDrive;

constexpr std::size_t kBlock = 4096;

class BlockTransfers : public ::testing::Test {
  protected:
    BlockTransfers() { drive_.bytesPerSector = 512; }

    TransferOutcome read(std::uint64_t offset, std::size_t size = kBlock) {
        buffer_.assign(size, std::byte{'.'});
        return ReadBlock(io_, drive_, buffer_, offset, [this](const std::string& text) { log_.push_back(text); });
    }
    TransferOutcome write(std::uint64_t offset) {
        buffer_.assign(kBlock, std::byte{'.'});
        return WriteBlock(io_, drive_, buffer_, offset);
    }
    void letEndAs(TransferOutcome outcome) {
        io_.fate = [outcome](std::uint64_t) { return outcome; };
    }

    static std::string unreadable(std::size_t size) {
        std::vector<std::byte> bytes(size, std::byte{'?'});
        fillWithUnreadableMarker(bytes);
        return PatternedDrive::textOf(bytes);
    }

    PatternedDrive io_;
    DriveRecord drive_;
    std::vector<std::byte> buffer_;
    std::vector<std::string> log_;
};

TEST_F(BlockTransfers, AWholeReadLeavesNoTrace) {
    EXPECT_EQ(read(5ULL << 30), TransferOutcome::kWhole);
    EXPECT_EQ(PatternedDrive::textOf(buffer_).substr(0, 16), "LBA=000010485760");
    EXPECT_EQ(drive_.badReadCount, 0U);
    EXPECT_THAT(log_, IsEmpty());
}

TEST_F(BlockTransfers, AFailedReadIsCountedLoggedAndMarked) {
    letEndAs(TransferOutcome::kFailed);
    EXPECT_EQ(read(5ULL << 30), TransferOutcome::kFailed);
    EXPECT_EQ(PatternedDrive::textOf(buffer_), unreadable(kBlock));
    EXPECT_EQ(drive_.badReadCount, 1U);
    EXPECT_THAT(log_, ElementsAre("BAD READ BLOCK AT SECTOR: [10485760]"));
}

TEST_F(BlockTransfers, SoIsOneOfADriveThatIsGone) {
    letEndAs(TransferOutcome::kGone);
    EXPECT_EQ(read(0), TransferOutcome::kGone);
    EXPECT_EQ(PatternedDrive::textOf(buffer_), unreadable(kBlock));
    EXPECT_EQ(drive_.badReadCount, 1U);
    EXPECT_THAT(log_, ElementsAre("BAD READ BLOCK AT SECTOR: [0]"));
}

TEST_F(BlockTransfers, TheLoggedSectorIsTheDrivesOwn) {
    drive_.bytesPerSector = 4096;
    letEndAs(TransferOutcome::kFailed);
    static_cast<void>(read(32768));
    EXPECT_THAT(log_, ElementsAre("BAD READ BLOCK AT SECTOR: [8]"));
}

TEST_F(BlockTransfers, AnUnreachablePlaceIsNotReadAndLeavesNoTrace) {
    letEndAs(TransferOutcome::kNotReached);
    EXPECT_EQ(read(kBlock), TransferOutcome::kNotReached);
    EXPECT_EQ(PatternedDrive::textOf(buffer_), std::string(kBlock, '.'));
    EXPECT_EQ(drive_.badReadCount, 0U);
    EXPECT_THAT(log_, IsEmpty());
    EXPECT_THAT(io_.reads, IsEmpty());
}

TEST_F(BlockTransfers, AWholeWriteIsNotCounted) {
    EXPECT_EQ(write(5ULL << 30), TransferOutcome::kWhole);
    EXPECT_THAT(io_.writes, ElementsAre(PatternedDrive::Transfer{5ULL << 30, kBlock}));
    EXPECT_EQ(drive_.writeErrorCount, 0U);
}

TEST_F(BlockTransfers, FailedWritesAreCountedWhateverTheirReason) {
    letEndAs(TransferOutcome::kFailed);
    EXPECT_EQ(write(0), TransferOutcome::kFailed);
    letEndAs(TransferOutcome::kGone);
    EXPECT_EQ(write(0), TransferOutcome::kGone);
    EXPECT_EQ(drive_.writeErrorCount, 2U);
}

TEST_F(BlockTransfers, AnUnreachablePlaceIsNotWrittenAndNotCounted) {
    letEndAs(TransferOutcome::kNotReached);
    EXPECT_EQ(write(0), TransferOutcome::kNotReached);
    EXPECT_THAT(io_.writes, IsEmpty());
    EXPECT_EQ(drive_.writeErrorCount, 0U);
}

TEST(BadReads, AreAllCountedWhenTwoThreadsCountOnOneDrive) {
    constexpr std::uint64_t kReads = 300000;
    DriveRecord drive;
    drive.bytesPerSector = 512;
    const auto count = [&] {
        for (std::uint64_t read = 0; read < kReads; ++read) {
            static_cast<void>(countBadRead(drive, 0));
        }
    };
    std::thread other(count);
    count();
    other.join();
    EXPECT_EQ(drive.badReadCount, 2 * kReads);
}

} // namespace
} // namespace torvane
