#pragma once

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>

namespace torvane::driver {

/// What the driver could not do, or what did not happen in time. GoogleTest reports its text as the test's failure.
class Failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// How long anything that happens at once on an idle machine may take on a busy one.
inline constexpr std::chrono::milliseconds kPatience{30'000};

/// True as soon as `condition()` holds, false when it never did within `limit`.
template <typename Condition>
[[nodiscard]] bool waitUntil(Condition&& condition, std::chrono::milliseconds limit = kPatience) {
    using std::chrono::milliseconds;
    const auto deadline = std::chrono::steady_clock::now() + limit;
    // What takes long is asked for less often: each question costs the program under test its time as well.
    constexpr milliseconds kFirstPause{2};
    constexpr milliseconds kLongestPause{20};
    milliseconds pause = kFirstPause;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(pause);
        pause = std::min(pause + milliseconds(1), kLongestPause);
    }
    return true;
}

/// Waits like `waitUntil` and throws a Failure that names `what` when the time is over.
template <typename Condition>
void await(const std::string& what, Condition&& condition, std::chrono::milliseconds limit = kPatience) {
    if (!waitUntil(condition, limit)) {
        throw Failure("waited " + std::to_string(limit.count()) + " ms in vain until " + what);
    }
}

} // namespace torvane::driver
