#include "copy/engine/flush_behind.h"

#include "base/helper_thread.h"

#include <algorithm>
#include <utility>

namespace torvane {

namespace {

/// From the first byte of both to the last.
BlockExtent spanned(const std::optional<BlockExtent>& one, const BlockExtent& other) {
    if (!one) {
        return other;
    }
    const std::uint64_t first = std::min(one->offset, other.offset);
    const std::uint64_t end = std::max(one->offset + one->length, other.offset + other.length);
    return {.offset = first, .length = static_cast<std::size_t>(end - first)};
}

} // namespace

void FlushBehind::stored(const BlockExtent& extent, TransferOutcome outcome) {
    gone_ = outcome == TransferOutcome::kGone;
    if (gone_) {
        doubt(std::exchange(waitingPlace_, {})); // it has taken its cache along
    }
    if (outcome != TransferOutcome::kWhole) {
        return;
    }
    waitingPlace_ = spanned(waitingPlace_, extent);
    if (++waiting_ == kBlocksBetweenFlushes) {
        begin();
    }
}

TransferOutcome FlushBehind::finish(UnflushedBlocks rest) {
    awaitFlush();
    if (gone_) {
        return TransferOutcome::kNotReached;
    }
    if (waiting_ != 0 && rest == UnflushedBlocks::kFlush) {
        waiting_ = 0;
        flushingPlace_ = std::exchange(waitingPlace_, {});
        note(flush_());
    }
    return worst_;
}

std::vector<BlockExtent> FlushBehind::unconfirmed() const {
    std::vector<BlockExtent> places = doubtful_;
    for (const std::optional<BlockExtent>& place : {flushingPlace_, waitingPlace_}) {
        if (place) {
            places.push_back(*place);
        }
    }
    return places;
}

void FlushBehind::begin() {
    awaitFlush();
    waiting_ = 0;
    flushingPlace_ = std::exchange(waitingPlace_, {});
    thread_ = startHelperThread([this] { running_ = flush_(); });
    if (!thread_.joinable()) {
        note(flush_());
    }
}

void FlushBehind::awaitFlush() {
    if (thread_.joinable()) {
        thread_.join();
        note(running_);
    }
}

void FlushBehind::note(TransferOutcome outcome) {
    if (worst_ == TransferOutcome::kWhole) {
        worst_ = outcome;
    }
    if (outcome != TransferOutcome::kWhole) {
        doubt(flushingPlace_);
        doubt(std::exchange(waitingPlace_, {})); // stored meanwhile: it may have gone the same way
    }
}

void FlushBehind::doubt(const std::optional<BlockExtent>& place) {
    if (place) {
        doubtful_.push_back(*place);
    }
}

} // namespace torvane
