#pragma once

#include "base/transfer_outcome.h"
#include "copy/engine/block_layout.h"
#include "copy/engine/image_file.h"
#include "discovery/drive_io.h"

#include <cstddef>
#include <span>

namespace torvane {

/// Where the blocks of a job come from.
class BlockSource {
  public:
    virtual ~BlockSource() = default;

    /// Reads one block. Called for the blocks in job order, one at a time, from the reader thread; whatever the outcome
    /// calls for (counting, logging, marking) is left to the job.
    [[nodiscard]] virtual TransferOutcome fetch(const BlockExtent& extent, std::span<std::byte> bytes) = 0;
};

/// Blocks of a drive.
class DriveSource : public BlockSource {
  public:
    DriveSource(DriveIo& io, const DriveRecord& drive) : io_(io), drive_(drive) {}
    TransferOutcome fetch(const BlockExtent& extent, std::span<std::byte> bytes) override {
        return reachAndRead(io_, drive_, extent.offset, bytes);
    }

  private:
    DriveIo& io_;
    const DriveRecord& drive_;
};

/// Blocks of an image file, one after the other from its current position.
class ImageSource : public BlockSource {
  public:
    explicit ImageSource(ImageFile& image) : image_(image) {}
    TransferOutcome fetch(const BlockExtent&, std::span<std::byte> bytes) override { return image_.read(bytes); }

  private:
    ImageFile& image_;
};

} // namespace torvane
