#pragma once

#include "base/transfer_outcome.h"
#include "copy/engine/block_layout.h"
#include "copy/engine/hash_thread.h"
#include "copy/engine/image_file.h"
#include "discovery/drive_io.h"

#include <cstddef>
#include <memory>
#include <span>

namespace torvane {

/// Where the blocks of a job go.
class BlockSink {
  public:
    virtual ~BlockSink() = default;

    /// Stores one block. Called for the blocks in job order, from the job's thread; what a failure means is left to the
    /// job.
    [[nodiscard]] virtual TransferOutcome store(const BlockExtent& extent, std::span<const std::byte> bytes) = 0;
};

/// Blocks of a drive; each that fails is counted on its record.
class DriveSink : public BlockSink {
  public:
    DriveSink(DriveIo& io, DriveRecord& drive) : io_(io), drive_(drive) {}
    TransferOutcome store(const BlockExtent& extent, std::span<const std::byte> bytes) override;

  private:
    DriveIo& io_;
    DriveRecord& drive_;
};

/// An image file in the making, one block after the other from its start.
class ImageSink : public BlockSink {
  public:
    explicit ImageSink(std::unique_ptr<ImageFile> image) : image_(std::move(image)) {}

    /// False for an image that could not be opened, and once it was closed. Then nothing may be stored.
    [[nodiscard]] bool isOpen() const { return image_ != nullptr; }
    void close() { image_.reset(); }

    TransferOutcome store(const BlockExtent&, std::span<const std::byte> bytes) override {
        return image_->write(bytes);
    }

  private:
    std::unique_ptr<ImageFile> image_;
};

/// Another sink, with a digest of what it is given: each block is hashed on a thread of its own while it is stored.
class HashingSink : public BlockSink {
  public:
    /// Both must outlive this, and nobody else may use the hasher meanwhile.
    HashingSink(BlockSink& inner, BlockHasher& hasher) : inner_(inner), hashing_(hasher) {}

    /// The inner sink's outcome, once the block was hashed as well.
    TransferOutcome store(const BlockExtent& extent, std::span<const std::byte> bytes) override;

    /// False once a block could not be added to the digest.
    [[nodiscard]] bool hashedAll() const { return hashedAll_; }

  private:
    BlockSink& inner_;
    HashThread hashing_;
    bool hashedAll_ = true;
};

} // namespace torvane
