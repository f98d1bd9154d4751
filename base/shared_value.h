#pragma once

#include <mutex>
#include <utility>

namespace torvane {

/// A value that threads share whole, as a field of a record that can be copied. A copy takes the value of that moment.
template <typename Value>
class SharedValue {
  public:
    SharedValue() = default;
    SharedValue(const SharedValue& other) : value_(other.get()) {}
    SharedValue& operator=(const SharedValue& other) {
        if (this != &other) {
            set(other.get());
        }
        return *this;
    }
    ~SharedValue() = default;

    [[nodiscard]] Value get() const {
        const std::scoped_lock lock(mutex_);
        return value_;
    }
    void set(Value value) {
        const std::scoped_lock lock(mutex_);
        value_ = std::move(value);
    }

  private:
    mutable std::mutex mutex_;
    Value value_{};
};

} // namespace torvane
