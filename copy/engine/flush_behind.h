#pragma once

#include "base/transfer_outcome.h"
#include "copy/engine/block_layout.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <thread>
#include <vector>

namespace torvane {

/// Blocks that are stored while the ones before them are brought onto the medium. With blocks of 32 MiB never more than
/// 256 MiB wait for it, so that a job's end does not stand still on a slow medium.
inline constexpr std::uint64_t kBlocksBetweenFlushes = 4;

/// What is done at a job's end about the blocks that no flush has been begun for.
enum class UnflushedBlocks {
    kFlush,
    kLeave, ///< to the system: the job was left before its end
};

/// Brings what a job stores onto the medium as the job goes, on a thread of its own, one flush at a time. The job sees
/// what it would see if it flushed itself between two blocks and asked at its end how that went. Where the system has
/// no room for a thread, the job's own flushes. One thread at a time may use this.
class FlushBehind {
  public:
    /// `flush` brings everything stored so far onto the medium; it may be called from another thread while the next
    /// blocks are stored.
    explicit FlushBehind(std::function<TransferOutcome()> flush) : flush_(std::move(flush)) {}
    ~FlushBehind() { awaitFlush(); }
    FlushBehind(const FlushBehind&) = delete;
    FlushBehind& operator=(const FlushBehind&) = delete;

    /// Tells how the block was stored. May begin a flush, once the one before it has ended.
    void stored(const BlockExtent& extent, TransferOutcome outcome);

    /// Waits for the flush under way, and flushes the rest or leaves it. Whole when no flush has failed: then
    /// everything that was stored and not left is on the medium; otherwise how the first flush that failed ended.
    /// `kNotReached` when the device was gone by its last block: then there is nobody to ask, and the blocks' own
    /// outcomes have told it.
    [[nodiscard]] TransferOutcome finish(UnflushedBlocks rest);

    /// After `finish`: the places that were stored and may not be on the medium, because their flush has failed or the
    /// device has gone before it. What was left to the system is not among them.
    [[nodiscard]] const std::vector<BlockExtent>& doubtful() const { return doubtful_; }

    /// At any time: the places that were stored and of which it is not known, or not yet, that they are on the medium.
    [[nodiscard]] std::vector<BlockExtent> unconfirmed() const;

  private:
    void begin();
    void awaitFlush();
    void note(TransferOutcome outcome);
    void doubt(const std::optional<BlockExtent>& place);

    std::function<TransferOutcome()> flush_;
    std::uint64_t waiting_ = 0;                ///< blocks stored since the last flush began
    std::optional<BlockExtent> waitingPlace_;  ///< from the first to the last of them
    std::optional<BlockExtent> flushingPlace_; ///< the same of the last flush
    std::vector<BlockExtent> doubtful_;
    bool gone_ = false; ///< the device was gone when the last block was to be stored
    TransferOutcome worst_ = TransferOutcome::kWhole;
    TransferOutcome running_ = TransferOutcome::kWhole; ///< the thread's own until it was joined
    std::thread thread_;
};

} // namespace torvane
