#include "copy/engine/block_pipeline.h"

#include "base/helper_thread.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>

namespace torvane {

namespace {

/// Makes the system find memory for the zero bytes, by writing: whoever reads them first gets a page that all share,
/// and pays twice when it is written.
void touchPages(std::span<std::byte> zeros) {
    constexpr std::size_t kSmallestPage = 4096; // bytes
    for (std::size_t i = 0; i < zeros.size(); i += kSmallestPage) {
        *static_cast<volatile std::byte*>(&zeros[i]) = std::byte{0};
    }
}

} // namespace

void BlockPipeline::FreeMemory::operator()(std::byte* memory) const {
    std::free(memory);
}

BlockPipeline::BlockPipeline(BlockSource& source, const BlockOrder& order, std::uint64_t ahead)
    : source_(source), order_(order), ahead_(std::clamp<std::uint64_t>(ahead, 1, kBlocksAhead)) {
    const std::size_t most = (std::numeric_limits<std::size_t>::max() - kBufferAlignment) / bufferCount_;
    if (order.blockSize() > most) {
        return;
    }
    const std::size_t bytes = bufferCount_ * order.blockSize();
    std::size_t room = bytes + kBufferAlignment;
    // Zero bytes that the system makes when they are first touched.
    memory_.reset(static_cast<std::byte*>(std::calloc(room, 1)));
    void* aligned = memory_.get();
    buffers_ = static_cast<std::byte*>(std::align(kBufferAlignment, bytes, aligned, room));
}

BlockPipeline::~BlockPipeline() {
    stop();
}

void BlockPipeline::start() {
    reader_ = startHelperThread([this] { readAhead(); });
}

Block BlockPipeline::take() {
    const std::uint64_t index = next_++;
    const BlockExtent extent = order_.extent(index);
    const std::span<std::byte> bytes = buffer(index, extent.length);
    const TransferOutcome outcome = await(index);
    if (outcome == TransferOutcome::kNotReached) {
        const std::span<std::byte> before = buffer(index + bufferCount_ - 1, extent.length);
        std::copy(before.begin(), before.end(), bytes.begin());
    }
    return {.extent = extent, .bytes = bytes, .outcome = outcome};
}

void BlockPipeline::settle() {
    {
        const std::lock_guard lock(mutex_);
        settled_ = next_;
    }
    changed_.notify_all();
}

std::optional<std::span<const std::byte>> BlockPipeline::awaitFinal(std::uint64_t index) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return stopping_ || isFinal(index); });
    if (stopping_) {
        return std::nullopt;
    }
    return buffer(index, order_.extent(index).length);
}

void BlockPipeline::stop() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    changed_.notify_all();
    if (reader_.joinable()) {
        reader_.join();
    }
}

std::span<std::byte> BlockPipeline::buffer(std::uint64_t index, std::size_t length) const {
    return {buffers_ + (index % bufferCount_) * order_.blockSize(), length};
}

bool BlockPipeline::mayFetch(std::uint64_t index) const {
    return index <= current_ + ahead_ && (lastWhole_ || index == current_);
}

bool BlockPipeline::isFinal(std::uint64_t index) const {
    const bool readWhole = index < fetched_ && outcomes_[index % bufferCount_] == TransferOutcome::kWhole;
    return index < settled_ || (readWhole && index < order_.fullBlocks());
}

TransferOutcome BlockPipeline::fetch(std::uint64_t index) {
    const BlockExtent extent = order_.extent(index);
    const std::span<std::byte> bytes = buffer(index, extent.length);
    if (index < bufferCount_) {
        touchPages(bytes);
    }
    // The block before is complete by now: either it was read whole, or the job is done with it.
    const std::span<std::byte> before = buffer(index + bufferCount_ - 1, extent.length);
    // The unreadable marker, should this block need it, will not reach its tail.
    const std::size_t tail = extent.length % kUnreadableMarkerSize;
    std::copy(before.end() - static_cast<std::ptrdiff_t>(tail), before.end(),
              bytes.end() - static_cast<std::ptrdiff_t>(tail));
    return source_.fetch(extent, bytes);
}

void BlockPipeline::readAhead() {
    for (std::uint64_t index = 0; index < order_.count(); ++index) {
        {
            std::unique_lock lock(mutex_);
            changed_.wait(lock, [&] { return stopping_ || mayFetch(index); });
            if (stopping_) {
                return;
            }
        }
        const TransferOutcome outcome = fetch(index);
        {
            const std::lock_guard lock(mutex_);
            outcomes_[index % bufferCount_] = outcome;
            lastWhole_ = outcome == TransferOutcome::kWhole;
            fetched_ = index + 1;
        }
        changed_.notify_all();
    }
}

TransferOutcome BlockPipeline::await(std::uint64_t index) {
    if (!reader_.joinable()) {
        return fetch(index);
    }
    std::unique_lock lock(mutex_);
    current_ = index;
    changed_.notify_all();
    changed_.wait(lock, [&] { return fetched_ > index; });
    return outcomes_[index % bufferCount_];
}

} // namespace torvane
