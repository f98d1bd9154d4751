#pragma once

#include "copy/engine/block_hasher.h"

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <span>
#include <thread>

namespace torvane {

/// Adds blocks to a digest on a thread of its own, so that a job can write a block while it is hashed. Where the system
/// has no room for a thread, `finish` does the work.
class HashThread {
  public:
    /// The hasher must outlive this, and nobody else may use it between `begin` and `finish`.
    explicit HashThread(BlockHasher& hasher);
    ~HashThread();
    HashThread(const HashThread&) = delete;
    HashThread& operator=(const HashThread&) = delete;

    /// Begins to add the bytes, which must stay as they are until `finish`.
    void begin(std::span<const std::byte> bytes);

    /// Waits until the bytes have been added, and tells whether they were.
    [[nodiscard]] bool finish();

  private:
    void run();

    BlockHasher& hasher_;

    std::mutex mutex_; ///< for everything below but the thread
    std::condition_variable changed_;
    std::span<const std::byte> bytes_;
    bool busy_ = false;
    bool added_ = false;
    bool ending_ = false;

    std::thread thread_; // last: it uses all of the above at once
};

} // namespace torvane
