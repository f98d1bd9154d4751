#pragma once

#include <atomic>

namespace torvane {

/// A number that threads share, as a field of a record that can be copied. A copy takes the number of that moment;
/// what is added is never lost, whoever else adds.
template <typename Number>
class SharedNumber {
  public:
    SharedNumber() = default;
    SharedNumber(Number value) : value_(value) {} // NOLINT(google-explicit-constructor): used as the number it is
    SharedNumber(const SharedNumber& other) : value_(other.value_.load()) {}
    SharedNumber& operator=(const SharedNumber& other) {
        value_ = other.value_.load();
        return *this;
    }
    ~SharedNumber() = default;

    SharedNumber& operator=(Number value) {
        value_ = value;
        return *this;
    }
    SharedNumber& operator+=(Number value) {
        value_ += value;
        return *this;
    }
    SharedNumber& operator++() {
        ++value_;
        return *this;
    }
    operator Number() const { return value_.load(); } // NOLINT(google-explicit-constructor): likewise

  private:
    std::atomic<Number> value_{};
};

} // namespace torvane
