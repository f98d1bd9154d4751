#include "window/log_row_queue.h"

#include <utility>

namespace torvane {

bool LogRowQueue::put(const LogRow& row, const std::function<bool()>& announce) {
    const std::lock_guard lock(mutex_);
    if (rows_.size() >= most_) {
        return false;
    }
    if (!isExpected()) {
        if (!announce()) {
            return false;
        }
        announced_ = true;
        lastTaken_ = std::chrono::steady_clock::now();
    }
    rows_.push_back(row);
    return true;
}

std::vector<LogRow> LogRowQueue::takeAll() {
    const std::lock_guard lock(mutex_);
    return take();
}

std::vector<LogRow> LogRowQueue::takeAllOrRest() {
    const std::lock_guard lock(mutex_);
    announced_ = !rows_.empty();
    return take();
}

bool LogRowQueue::isExpected() const {
    return announced_ && std::chrono::steady_clock::now() - lastTaken_ < kPatience;
}

std::vector<LogRow> LogRowQueue::take() {
    lastTaken_ = std::chrono::steady_clock::now();
    return std::exchange(rows_, {});
}

} // namespace torvane
