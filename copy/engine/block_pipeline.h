#pragma once

#include "copy/engine/block_layout.h"
#include "copy/engine/block_source.h"

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <thread>

namespace torvane {

/// One block in the job's hands, until it takes the next one.
struct Block {
    BlockExtent extent;
    std::span<std::byte> bytes;
    TransferOutcome outcome = TransferOutcome::kWhole;
};

/// Reads a job's blocks ahead of it, so that reading goes on while the job writes and hashes.
///
/// The job sees what it would see with a single buffer that it reads into block by block:
///  - blocks come in job order, each when the job takes it;
///  - after a failed seek a block holds what the block before it held, and what a failed read leaves alone is left of
///    the block before it, too (before the first block: zero bytes);
///  - after a failed read nothing more is read until the job takes the next block: a failing drive is never pushed
///    further than the job will use;
///  - blocks that were read ahead and never taken have left no trace.
///
/// A thread reads ahead of the one in the job's hands. Where the system has no room for a thread, each block is read
/// when it is taken. Another thread may go through the blocks beside the job (`awaitFinal`). Memory: two blocks more
/// than are read ahead, each at a multiple of `kBufferAlignment` where the block size is one.
class BlockPipeline {
  public:
    /// Most blocks that are read ahead of the one in the job's hands. More of them bridge longer pauses of a drive: a
    /// destination may stand still for as long as its source takes for so many.
    static constexpr std::uint64_t kBlocksAhead = 4;

    /// The source must outlive the pipeline. `ahead`: most blocks that are read ahead, 1 to `kBlocksAhead`.
    BlockPipeline(BlockSource& source, const BlockOrder& order, std::uint64_t ahead = kBlocksAhead);
    ~BlockPipeline();
    BlockPipeline(const BlockPipeline&) = delete;
    BlockPipeline& operator=(const BlockPipeline&) = delete;

    /// False when there was no memory for the buffers: then nothing may be taken.
    [[nodiscard]] bool hasBuffers() const { return buffers_ != nullptr; }

    [[nodiscard]] const BlockOrder& order() const { return order_; }

    /// Begins to read.
    void start();

    /// The next block; waits until it was read. Call it at most `order().count()` times.
    [[nodiscard]] Block take();

    /// The bytes of the block in the job's hands are what it will store: nobody changes them any more.
    void settle();

    /// The bytes that the job will store of a block, from the one in its hands on, for a thread beside the job's own:
    /// waits until the block was read whole, or else until the job has settled it. A remainder is waited for in any
    /// case, because a job that is stopped before it is still a whole one of the full blocks. None once `stop` was
    /// called. The bytes may be used until the job takes the block after them.
    [[nodiscard]] std::optional<std::span<const std::byte>> awaitFinal(std::uint64_t index);

    /// Nothing more will be taken: waits for the read in flight, and drops what was read ahead.
    void stop();

  private:
    struct FreeMemory {
        void operator()(std::byte* memory) const;
    };

    [[nodiscard]] std::span<std::byte> buffer(std::uint64_t index, std::size_t length) const;
    [[nodiscard]] bool mayFetch(std::uint64_t index) const;
    [[nodiscard]] bool isFinal(std::uint64_t index) const;
    [[nodiscard]] TransferOutcome fetch(std::uint64_t index);
    void readAhead();
    [[nodiscard]] TransferOutcome await(std::uint64_t index);

    BlockSource& source_;
    const BlockOrder order_;
    const std::uint64_t ahead_;
    /// One in the job's hands, those ahead of it, and the one before it, whose bytes a failed seek delivers again.
    const std::uint64_t bufferCount_ = ahead_ + 2;
    std::unique_ptr<std::byte[], FreeMemory> memory_;
    std::byte* buffers_ = nullptr; ///< in it, aligned
    std::thread reader_;
    std::uint64_t next_ = 0; ///< the block that the job will take next; the job's thread alone uses it

    std::mutex mutex_; ///< for everything below
    std::condition_variable changed_;
    std::array<TransferOutcome, kBlocksAhead + 2> outcomes_{}; ///< of the blocks that the buffers hold
    std::uint64_t fetched_ = 0;                                ///< blocks read so far
    std::uint64_t current_ = 0;                                ///< the block in the job's hands, or awaited by it
    std::uint64_t settled_ = 0;                                ///< blocks that the job has settled, as far as it did
    bool lastWhole_ = true;                                    ///< the last block read was read whole
    bool stopping_ = false;
};

} // namespace torvane
