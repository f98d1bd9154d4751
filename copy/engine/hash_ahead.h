#pragma once

#include "copy/engine/block_hasher.h"
#include "copy/engine/block_pipeline.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <thread>

namespace torvane {

/// Adds a job's blocks to a digest, one after the other, on a thread of its own: each as soon as nobody will change it
/// any more, so that a slow moment of the medium does not hold the hash up, nor one of the hash the medium. Where the
/// system has no room for a thread, `finish` does the work.
class HashAhead {
  public:
    /// Both must outlive this, and nobody else may use the hasher meanwhile.
    HashAhead(BlockHasher& hasher, BlockPipeline& blocks);
    /// Nothing more will be taken from the pipeline.
    ~HashAhead();
    HashAhead(const HashAhead&) = delete;
    HashAhead& operator=(const HashAhead&) = delete;

    /// Waits until the block in the job's hands, which is final (`BlockPipeline::settle`), was added, and tells whether
    /// it and all before it were. Once for each block.
    [[nodiscard]] bool finish(std::span<const std::byte> bytes);

  private:
    void run();
    /// Notes how the next block went; false: nothing more is to be added.
    bool note(bool added);

    BlockHasher& hasher_;
    BlockPipeline& blocks_;
    std::uint64_t finished_ = 0; ///< blocks that the job was told of; the job's thread alone uses it

    std::mutex mutex_; ///< for everything below but the thread
    std::condition_variable changed_;
    std::uint64_t added_ = 0; ///< blocks in the digest
    bool failed_ = false;     ///< the block behind those could not be added

    std::thread thread_; // last: it uses all of the above at once
};

} // namespace torvane
