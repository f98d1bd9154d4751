#pragma once

#include <functional>
#include <utility>
#include <vector>

namespace torvane::testing {

/// For a scope the user leaves at once whatever is waited for; it is done all the same, when the scope ends.
class LeftWaits {
  public:
    LeftWaits() : outer_(std::exchange(current, this)) {}
    ~LeftWaits() {
        current = outer_;
        for (const std::function<void()>& work : works_) {
            work();
        }
    }
    LeftWaits(const LeftWaits&) = delete;
    LeftWaits& operator=(const LeftWaits&) = delete;

    /// True: `work` was left.
    [[nodiscard]] static bool take(const std::function<void()>& work) {
        if (current != nullptr) {
            current->works_.push_back(work);
        }
        return current != nullptr;
    }

  private:
    static inline LeftWaits* current = nullptr;

    LeftWaits* outer_;
    std::vector<std::function<void()>> works_;
};

} // namespace torvane::testing
