#include "copy/engine/block_sink.h"

#include "tests/unit/patterned_drive.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace torvane {
namespace {

using ::testing::ElementsAre;
using testing::PatternedDrive;

std::span<const std::byte> bytesOf(const std::string& text) {
    return std::as_bytes(std::span(text));
}

class RecordingImage : public ImageFile {
  public:
    RecordingImage(std::string& text, bool& open) : text_(text), open_(open) { open_ = true; }
    ~RecordingImage() override { open_ = false; }
    TransferOutcome read(std::span<std::byte>) override { return TransferOutcome::kFailed; }
    TransferOutcome write(std::span<const std::byte> bytes) override {
        text_ += PatternedDrive::textOf(bytes);
        return TransferOutcome::kWhole;
    }
    TransferOutcome flush() override { return TransferOutcome::kFailed; }
    bool rewind() override { return false; }
    std::uint64_t size() override { return text_.size(); }

  private:
    std::string& text_;
    bool& open_;
};

TEST(DriveSink, WritesWhereTheBlockBelongsAndCountsWhatFails) {
    PatternedDrive io;
    DriveRecord drive;
    DriveSink sink(io, drive);
    EXPECT_EQ(sink.store({.offset = 8192, .length = 3}, bytesOf("abc")), TransferOutcome::kWhole);
    io.fate = [](std::uint64_t) { return TransferOutcome::kGone; };
    EXPECT_EQ(sink.store({.offset = 0, .length = 2}, bytesOf("de")), TransferOutcome::kGone);
    EXPECT_THAT(io.writes, ElementsAre(PatternedDrive::Transfer{8192, 3}, PatternedDrive::Transfer{0, 2}));
    EXPECT_EQ(drive.writeErrorCount, 1U);
}

TEST(DriveSink, AFlushThatFailsIsCountedLikeAWrite) {
    PatternedDrive io;
    DriveRecord drive;
    DriveSink sink(io, drive);
    EXPECT_EQ(sink.store({.offset = 0, .length = 3}, bytesOf("abc")), TransferOutcome::kWhole);
    io.flushFate = TransferOutcome::kFailed;
    EXPECT_EQ(sink.flush(UnflushedBlocks::kFlush), TransferOutcome::kFailed);
    EXPECT_EQ(drive.writeErrorCount, 1U);
    EXPECT_EQ(io.flushes, 1);
}

TEST(DriveSink, ADriveThatWasGoneByItsLastBlockIsNotAskedToFlush) {
    PatternedDrive io;
    DriveRecord drive;
    DriveSink sink(io, drive);
    EXPECT_EQ(sink.store({.offset = 0, .length = 3}, bytesOf("abc")), TransferOutcome::kWhole);
    io.fate = [](std::uint64_t) { return TransferOutcome::kGone; };
    EXPECT_EQ(sink.store({.offset = 3, .length = 2}, bytesOf("de")), TransferOutcome::kGone);
    EXPECT_EQ(sink.flush(UnflushedBlocks::kFlush), TransferOutcome::kNotReached);
    EXPECT_EQ(drive.writeErrorCount, 1U) << "the block's own failure";
    EXPECT_EQ(io.flushes, 0);
}

TEST(DriveSink, ADriveThatIsThereAndWasWrittenToMayHoldANewTable) {
    PatternedDrive io;
    DriveRecord drive;
    DriveSink sink(io, drive);
    EXPECT_FALSE(sink.mayHoldNewTable()) << "nothing was written";
    io.fate = [](std::uint64_t) { return TransferOutcome::kFailed; };
    EXPECT_EQ(sink.store({.offset = 0, .length = 3}, bytesOf("abc")), TransferOutcome::kFailed);
    EXPECT_TRUE(sink.mayHoldNewTable()) << "nobody knows what of it has arrived";
    io.fate = [](std::uint64_t) { return TransferOutcome::kGone; };
    EXPECT_EQ(sink.store({.offset = 0, .length = 3}, bytesOf("abc")), TransferOutcome::kGone);
    EXPECT_FALSE(sink.mayHoldNewTable());
    io.fate = [](std::uint64_t) { return TransferOutcome::kWhole; };
    EXPECT_EQ(sink.store({.offset = 0, .length = 3}, bytesOf("abc")), TransferOutcome::kWhole);
    EXPECT_TRUE(sink.mayHoldNewTable());
    io.flushFate = TransferOutcome::kGone;
    EXPECT_EQ(sink.flush(UnflushedBlocks::kFlush), TransferOutcome::kGone);
    EXPECT_FALSE(sink.mayHoldNewTable());
}

TEST(DriveSink, IsShutOutWhenBlocksAreRefusedAfterOthersWereStored) {
    PatternedDrive io;
    DriveRecord drive;
    DriveSink sink(io, drive);
    io.fate = [](std::uint64_t) { return TransferOutcome::kRefused; };
    EXPECT_EQ(sink.store({.offset = 0, .length = 3}, bytesOf("abc")), TransferOutcome::kRefused);
    EXPECT_FALSE(sink.wasShutOut()) << "it never was let in";
    io.fate = [](std::uint64_t) { return TransferOutcome::kWhole; };
    EXPECT_EQ(sink.store({.offset = 3, .length = 3}, bytesOf("def")), TransferOutcome::kWhole);
    io.fate = [](std::uint64_t) { return TransferOutcome::kFailed; };
    EXPECT_EQ(sink.store({.offset = 6, .length = 3}, bytesOf("ghi")), TransferOutcome::kFailed);
    EXPECT_FALSE(sink.wasShutOut()) << "a failure of the drive";
    io.fate = [](std::uint64_t) { return TransferOutcome::kRefused; };
    EXPECT_EQ(sink.store({.offset = 9, .length = 3}, bytesOf("jkl")), TransferOutcome::kRefused);
    EXPECT_TRUE(sink.wasShutOut());
    EXPECT_EQ(drive.writeErrorCount, 3U);
}

TEST(ImageSink, TellsHowItsFileWasFlushed) {
    std::string text;
    bool open = false;
    ImageSink sink(std::make_unique<RecordingImage>(text, open));
    EXPECT_EQ(sink.store({.offset = 0, .length = 3}, bytesOf("abc")), TransferOutcome::kWhole);
    EXPECT_EQ(sink.flush(UnflushedBlocks::kFlush), TransferOutcome::kFailed);
}

TEST(ImageSink, WritesOneBlockBehindTheOther) {
    std::string text;
    bool open = false;
    ImageSink sink(std::make_unique<RecordingImage>(text, open));
    EXPECT_TRUE(sink.isOpen());
    EXPECT_EQ(sink.store({.offset = 8192, .length = 3}, bytesOf("abc")), TransferOutcome::kWhole);
    EXPECT_EQ(sink.store({.offset = 0, .length = 2}, bytesOf("de")), TransferOutcome::kWhole);
    EXPECT_EQ(text, "abcde");
    sink.close();
    EXPECT_FALSE(open);
    EXPECT_FALSE(sink.isOpen());
    EXPECT_FALSE(ImageSink(nullptr).isOpen());
}

} // namespace
} // namespace torvane
