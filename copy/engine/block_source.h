#pragma once

#include "base/transfer_outcome.h"
#include "copy/engine/block_layout.h"
#include "copy/engine/image_file.h"
#include "discovery/drive_io.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
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

/// Another source up to an end, for blocks that reach beyond it: these have zeros behind `bytes`, which may lie inside
/// the last sector that is read.
class LimitedSource : public BlockSource {
  public:
    /// `inner` must outlive this. `end` is at least `bytes`.
    LimitedSource(BlockSource& inner, std::uint64_t bytes, std::uint64_t end)
        : inner_(inner), bytes_(bytes), end_(end) {}

    TransferOutcome fetch(const BlockExtent& extent, std::span<std::byte> bytes) override {
        const std::size_t length = bytesUpTo(end_, extent);
        const TransferOutcome outcome = inner_.fetch({.offset = extent.offset, .length = length}, bytes.first(length));
        std::ranges::fill(bytes.subspan(bytesUpTo(bytes_, extent)), std::byte{0});
        return outcome;
    }

  private:
    BlockSource& inner_;
    std::uint64_t bytes_;
    std::uint64_t end_;
};

} // namespace torvane
