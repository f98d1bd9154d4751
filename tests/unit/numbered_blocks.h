#pragma once

#include "copy/engine/block_source.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <vector>

namespace torvane::testing {

/// Blocks that hold their own number; a test may hold back and fail reads.
class NumberedBlocks : public BlockSource {
  public:
    TransferOutcome fetch(const BlockExtent& extent, std::span<std::byte> bytes) override {
        std::unique_lock lock(mutex_);
        const std::size_t number = begun_.size();
        begun_.push_back(extent);
        changed_.notify_all();
        changed_.wait(lock, [&] { return number < allowed_; });
        const TransferOutcome outcome = number < outcomes.size() ? outcomes[number] : TransferOutcome::kWhole;
        if (outcome == TransferOutcome::kWhole) {
            std::fill(bytes.begin(), bytes.end(), static_cast<std::byte>('0' + number));
        } else if (outcome == TransferOutcome::kFailed) {
            std::fill_n(bytes.begin(), std::min(bytes.size(), partOfFailedRead), std::byte{'x'});
        }
        ++done_;
        changed_.notify_all();
        return outcome;
    }

    /// Reads may go through up to this many; the next one waits.
    void allow(std::size_t reads) {
        const std::lock_guard lock(mutex_);
        allowed_ = reads;
        changed_.notify_all();
    }

    /// Waits until so many reads have begun.
    bool awaitBegun(std::size_t reads) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(30), [&] { return begun_.size() >= reads; });
    }

    std::size_t begun() {
        const std::lock_guard lock(mutex_);
        return begun_.size();
    }
    std::size_t done() {
        const std::lock_guard lock(mutex_);
        return done_;
    }

    std::vector<TransferOutcome> outcomes;
    std::size_t partOfFailedRead = 0;

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<BlockExtent> begun_;
    std::size_t allowed_ = 1000;
    std::size_t done_ = 0;
};

} // namespace torvane::testing
