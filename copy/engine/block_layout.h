#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace torvane {

/// Bytes that every copy job moves at a time: 32 MiB.
inline constexpr std::size_t kCopyBlockSize = 0x2000000;

/// A job's buffers begin at multiples of this many bytes, as unbuffered transfers demand: more than any sector.
inline constexpr std::size_t kBufferAlignment = 0x10000;

/// A reading job stops after the block in which the source's bad-read count reached this.
inline constexpr std::uint64_t kBadBlockLimit = 11;

struct BlockSplit {
    std::uint64_t fullBlocks = 0;
    std::uint64_t remainder = 0; ///< bytes, less than one block

    bool operator==(const BlockSplit&) const = default;
};

/// How many full blocks `byteCount` holds, and what is left over.
[[nodiscard]] BlockSplit SplitIntoBlocks(std::uint64_t byteCount, std::size_t blockSize = kCopyBlockSize);

/// One transfer.
struct BlockExtent {
    std::uint64_t offset = 0; ///< bytes from the start of the drive
    std::size_t length = 0;   ///< bytes

    bool operator==(const BlockExtent&) const = default;
};

/// How many bytes of the block lie before `end`, a place on the drive.
[[nodiscard]] std::size_t bytesUpTo(std::uint64_t end, const BlockExtent& extent);

/// The byte range [0, byteCount) cut into blocks, in the order in which a job moves them: the full blocks first, the
/// remainder last. Forward, the full blocks start at 0; in reverse they are counted back from the end of the range, so
/// that the remainder lies at its start.
class BlockOrder {
  public:
    static BlockOrder forward(std::uint64_t byteCount, std::size_t blockSize) { return {byteCount, blockSize, false}; }
    static BlockOrder reverse(std::uint64_t byteCount, std::size_t blockSize) { return {byteCount, blockSize, true}; }

    /// Bytes of all transfers.
    [[nodiscard]] std::uint64_t byteCount() const { return byteCount_; }
    [[nodiscard]] std::uint64_t fullBlocks() const { return split_.fullBlocks; }
    [[nodiscard]] bool hasRemainder() const { return split_.remainder != 0; }
    /// All transfers, the remainder's included.
    [[nodiscard]] std::uint64_t count() const { return split_.fullBlocks + (hasRemainder() ? 1 : 0); }
    [[nodiscard]] BlockExtent extent(std::uint64_t index) const;
    [[nodiscard]] std::size_t blockSize() const { return blockSize_; }

  private:
    BlockOrder(std::uint64_t byteCount, std::size_t blockSize, bool reverse)
        : byteCount_(byteCount), blockSize_(blockSize), split_(SplitIntoBlocks(byteCount, blockSize)),
          reverse_(reverse) {}

    std::uint64_t byteCount_;
    std::size_t blockSize_;
    BlockSplit split_;
    bool reverse_;
};

/// Bytes of the text that an unreadable block is filled with.
inline constexpr std::size_t kUnreadableMarkerSize = 16;

/// Overwrites an unreadable block with "KVL<->UNREADABLE", over and over. A last (length mod 16) bytes stay as they
/// are.
void fillWithUnreadableMarker(std::span<std::byte> block);

/// Number of the sector at a byte offset. A sector size of 0, not told by the drive, counts as 512.
[[nodiscard]] std::int64_t sectorOfOffset(std::uint64_t offset, std::int32_t bytesPerSector);

} // namespace torvane
