#include "window/log_row_queue.h"

#include <utility>

namespace torvane {

bool LogRowQueue::put(const LogRow& row, const std::function<bool()>& announce) {
    const std::lock_guard lock(mutex_);
    if (rows_.size() >= most_ || (!announced_ && !announce())) {
        return false;
    }
    announced_ = true;
    rows_.push_back(row);
    return true;
}

std::vector<LogRow> LogRowQueue::takeAll() {
    const std::lock_guard lock(mutex_);
    return std::exchange(rows_, {});
}

std::vector<LogRow> LogRowQueue::takeAllOrRest() {
    const std::lock_guard lock(mutex_);
    announced_ = !rows_.empty();
    return std::exchange(rows_, {});
}

} // namespace torvane
