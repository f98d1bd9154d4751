#pragma once

#include <atomic>

namespace torvane {

/// A number that threads share, as a field of a record that can be copied. A copy takes the number of that moment;
/// what is added is never lost, whoever else adds.
template <typename Number>
class SharedWord {
  public:
    SharedWord() = default;
    SharedWord(Number value) : value_(value) {} // NOLINT(google-explicit-constructor): used as the number it is
    SharedWord(const SharedWord& other) : value_(other.value_.load()) {}
    SharedWord& operator=(const SharedWord& other) {
        value_ = other.value_.load();
        return *this;
    }
    ~SharedWord() = default;

    SharedWord& operator=(Number value) {
        value_ = value;
        return *this;
    }
    SharedWord& operator+=(Number value) {
        value_ += value;
        return *this;
    }
    SharedWord& operator++() {
        ++value_;
        return *this;
    }
    operator Number() const { return value_.load(); } // NOLINT(google-explicit-constructor): likewise

  private:
    std::atomic<Number> value_{};
};

} // namespace torvane
