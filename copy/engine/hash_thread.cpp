#include "copy/engine/hash_thread.h"

#include "copy/engine/helper_thread.h"

namespace torvane {

HashThread::HashThread(BlockHasher& hasher) : hasher_(hasher), thread_(startHelperThread([this] { run(); })) {}

HashThread::~HashThread() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    changed_.notify_all();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void HashThread::begin(std::span<const std::byte> bytes) {
    {
        const std::lock_guard lock(mutex_);
        bytes_ = bytes;
        busy_ = true;
    }
    changed_.notify_all();
}

bool HashThread::finish() {
    if (!thread_.joinable()) {
        return hasher_.add(bytes_);
    }
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !busy_; });
    return added_;
}

void HashThread::run() {
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return busy_ || ending_; });
        if (!busy_) {
            return;
        }
        const std::span<const std::byte> bytes = bytes_;
        lock.unlock();
        const bool added = hasher_.add(bytes);
        lock.lock();
        added_ = added;
        busy_ = false;
        changed_.notify_all();
    }
}

} // namespace torvane
