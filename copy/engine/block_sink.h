#pragma once

#include "base/transfer_outcome.h"
#include "copy/engine/block_layout.h"
#include "copy/engine/flush_behind.h"
#include "copy/engine/hash_ahead.h"
#include "copy/engine/image_file.h"
#include "discovery/drive_io.h"

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace torvane {

/// Where the blocks of a job go.
class BlockSink {
  public:
    virtual ~BlockSink() = default;

    /// Stores one block. Called for the blocks in job order, from the job's thread; what a failure means is left to the
    /// job.
    [[nodiscard]] virtual TransferOutcome store(const BlockExtent& extent, std::span<const std::byte> bytes) = 0;

    /// Brings what was stored onto the medium, once the last block was stored, or leaves what is not there yet: whole
    /// when no flush has failed. Flushes that were under way meanwhile and failed are told here. `kNotReached` when the
    /// device was gone by the last block, whose own outcome has told it.
    [[nodiscard]] virtual TransferOutcome flush(UnflushedBlocks rest) = 0;

    /// After `flush`: the places that were stored and may not be on the medium (`FlushBehind::doubtful`).
    [[nodiscard]] virtual const std::vector<BlockExtent>& doubtful() const = 0;

    /// Between two blocks: the places that were stored and may not be on the medium yet (`FlushBehind::unconfirmed`).
    [[nodiscard]] virtual std::vector<BlockExtent> unconfirmed() const = 0;
};

/// Blocks of a drive; each that fails is counted on its record, and so is a failed flush.
class DriveSink : public BlockSink {
  public:
    DriveSink(DriveIo& io, DriveRecord& drive)
        : io_(io), drive_(drive), flushing_([&io, &drive] { return io.flush(drive); }) {}
    TransferOutcome store(const BlockExtent& extent, std::span<const std::byte> bytes) override;
    TransferOutcome flush(UnflushedBlocks rest) override;
    const std::vector<BlockExtent>& doubtful() const override { return flushing_.doubtful(); }
    std::vector<BlockExtent> unconfirmed() const override { return flushing_.unconfirmed(); }

    /// Something was to be stored, and the drive was still there the last time that it was told to do anything.
    [[nodiscard]] bool mayHoldNewTable() const { return used_ && !gone_; }
    /// The system has refused a block after it had let others be stored: what it does once a volume is mounted there.
    [[nodiscard]] bool wasShutOut() const { return shutOut_; }

  private:
    DriveIo& io_;
    DriveRecord& drive_;
    FlushBehind flushing_;
    bool used_ = false;
    bool gone_ = false;
    bool storedAny_ = false;
    bool shutOut_ = false;
};

/// An image file in the making, one block after the other from its start.
class ImageSink : public BlockSink {
  public:
    explicit ImageSink(std::unique_ptr<ImageFile> image);

    /// False for an image that could not be opened, and once it was closed. Then nothing may be stored or flushed.
    [[nodiscard]] bool isOpen() const { return image_ != nullptr; }
    void close();

    TransferOutcome store(const BlockExtent& extent, std::span<const std::byte> bytes) override;
    TransferOutcome flush(UnflushedBlocks rest) override { return flushing_->finish(rest); }
    const std::vector<BlockExtent>& doubtful() const override { return flushing_ ? flushing_->doubtful() : doubtful_; }
    std::vector<BlockExtent> unconfirmed() const override { return flushing_ ? flushing_->unconfirmed() : doubtful_; }

  private:
    std::unique_ptr<ImageFile> image_;
    std::vector<BlockExtent> doubtful_;     ///< once it was closed
    std::unique_ptr<FlushBehind> flushing_; // after the image: its end waits for a flush of it
};

/// Another sink, with a digest of what it is given. Hashing may be ahead of storing, never behind it: who is told that
/// a block was stored knows how hashing it went.
class HashingSink : public BlockSink {
  public:
    /// All must outlive this, and nobody else may use the hasher meanwhile. What is stored are the blocks of `blocks`,
    /// each as it was taken and then settled.
    HashingSink(BlockSink& inner, BlockHasher& hasher, BlockPipeline& blocks)
        : inner_(inner), blocks_(blocks), hashing_(hasher, blocks) {}

    /// The inner sink's outcome, once the block was hashed as well.
    TransferOutcome store(const BlockExtent& extent, std::span<const std::byte> bytes) override;
    TransferOutcome flush(UnflushedBlocks rest) override { return inner_.flush(rest); }
    const std::vector<BlockExtent>& doubtful() const override { return inner_.doubtful(); }
    std::vector<BlockExtent> unconfirmed() const override { return inner_.unconfirmed(); }

    /// False once a block could not be added to the digest.
    [[nodiscard]] bool hashedAll() const { return hashedAll_; }

  private:
    BlockSink& inner_;
    BlockPipeline& blocks_;
    HashAhead hashing_;
    bool hashedAll_ = true;
};

} // namespace torvane
