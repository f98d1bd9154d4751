#include "copy/rescue/leavable_reader.h"

#include "base/helper_thread.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>
#include <vector>

namespace torvane {

namespace {

constexpr std::chrono::milliseconds kBetweenLooks{100};

} // namespace

/// What reader and caller have in common, and the reader keeps when the caller has gone.
struct LeavableReader::Shared {
    enum class State { kIdle, kAsked, kDone, kLeft };

    explicit Shared(Read reading) : read(std::move(reading)) {}

    /// The thread's work: one read after the other until it is left.
    void serve() {
        std::unique_lock lock(mutex);
        while (true) {
            changed.wait(lock, [this] { return state == State::kAsked || state == State::kLeft; });
            if (state == State::kLeft) {
                return;
            }
            const std::uint64_t place = offset;
            lock.unlock();
            const TransferOutcome ended = read(place, bytes);
            lock.lock();
            outcome = ended;
            if (state == State::kAsked) {
                state = State::kDone;
            }
            changed.notify_all();
        }
    }

    const Read read;
    std::mutex mutex;
    std::condition_variable changed;
    State state = State::kIdle;
    std::uint64_t offset = 0;
    std::vector<std::byte> bytes; ///< the reader's own while it is asked
    TransferOutcome outcome = TransferOutcome::kFailed;
};

LeavableReader::LeavableReader(Read read) : shared_(std::make_shared<Shared>(std::move(read))) {
    std::thread thread = startHelperThread([shared = shared_] { shared->serve(); });
    threaded_ = thread.joinable();
    if (threaded_) {
        thread.detach();
    }
}

LeavableReader::~LeavableReader() {
    const std::lock_guard lock(shared_->mutex);
    shared_->state = Shared::State::kLeft;
    shared_->changed.notify_all();
}

std::optional<TransferOutcome> LeavableReader::read(std::uint64_t offset, std::span<std::byte> bytes,
                                                    const std::function<bool()>& mayWait) {
    if (!threaded_) {
        return shared_->read(offset, bytes);
    }
    Shared& shared = *shared_;
    std::unique_lock lock(shared.mutex);
    if (shared.state == Shared::State::kLeft) {
        return std::nullopt;
    }
    shared.offset = offset;
    shared.bytes.resize(bytes.size());
    shared.state = Shared::State::kAsked;
    shared.changed.notify_all();
    const auto isDone = [&shared] { return shared.state == Shared::State::kDone; };
    while (!shared.changed.wait_for(lock, kBetweenLooks, isDone)) {
        lock.unlock();
        const bool waits = mayWait();
        lock.lock();
        if (!waits && !isDone()) {
            shared.state = Shared::State::kLeft;
            return std::nullopt;
        }
    }
    shared.state = Shared::State::kIdle;
    std::ranges::copy(shared.bytes, bytes.begin());
    return shared.outcome;
}

} // namespace torvane
