#include "copy/engine/hash_ahead.h"

#include "base/helper_thread.h"

#include <optional>

namespace torvane {

HashAhead::HashAhead(BlockHasher& hasher, BlockPipeline& blocks)
    : hasher_(hasher), blocks_(blocks), thread_(startHelperThread([this] { run(); })) {}

HashAhead::~HashAhead() {
    blocks_.stop();
    if (thread_.joinable()) {
        thread_.join();
    }
}

bool HashAhead::finish(std::span<const std::byte> bytes) {
    const std::uint64_t index = finished_++;
    if (!thread_.joinable()) {
        return note(!failed_ && hasher_.add(bytes));
    }
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return failed_ || added_ > index; });
    return added_ > index;
}

void HashAhead::run() {
    for (std::uint64_t index = 0; index < blocks_.order().count(); ++index) {
        const std::optional<std::span<const std::byte>> bytes = blocks_.awaitFinal(index);
        if (!bytes || !note(hasher_.add(*bytes))) {
            return;
        }
    }
}

bool HashAhead::note(bool added) {
    {
        const std::lock_guard lock(mutex_);
        added_ += added ? 1 : 0;
        failed_ = !added;
    }
    changed_.notify_all();
    return added;
}

} // namespace torvane
