#include "copy/engine/flush_behind.h"

#include "base/helper_thread.h"

namespace torvane {

void FlushBehind::stored(TransferOutcome outcome) {
    gone_ = outcome == TransferOutcome::kGone;
    waiting_ += outcome == TransferOutcome::kWhole ? 1 : 0;
    if (waiting_ == kBlocksBetweenFlushes) {
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
        note(flush_());
    }
    return worst_;
}

void FlushBehind::begin() {
    awaitFlush();
    waiting_ = 0;
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
}

} // namespace torvane
