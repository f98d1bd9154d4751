#pragma once

#include <windows.h>

#include <utility>

namespace torvane {

/// Owns one system resource; `Traits` names its type, its empty value and how it is closed.
template <typename Traits>
class Owned {
  public:
    using Value = typename Traits::Value;

    Owned() = default;
    explicit Owned(Value value) : value_(value) {}
    Owned(Owned&& other) noexcept : value_(other.release()) {}
    Owned& operator=(Owned&& other) noexcept {
        if (this != &other) {
            reset(other.release());
        }
        return *this;
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    ~Owned() { reset(); }

    [[nodiscard]] explicit operator bool() const { return value_ != Traits::empty(); }
    [[nodiscard]] Value get() const { return value_; }

    [[nodiscard]] Value release() { return std::exchange(value_, Traits::empty()); }
    void reset(Value value = Traits::empty()) {
        if (value_ != Traits::empty()) {
            Traits::close(value_);
        }
        value_ = value;
    }

  private:
    Value value_ = Traits::empty();
};

/// Threads, processes, events: the functions that make them return null on failure.
struct HandleTraits {
    using Value = HANDLE;
    static Value empty() { return nullptr; }
    static void close(Value handle) { CloseHandle(handle); }
};
using UniqueHandle = Owned<HandleTraits>;

/// Files and devices: CreateFile returns INVALID_HANDLE_VALUE on failure.
struct FileTraits {
    using Value = HANDLE;
    static Value empty() { return INVALID_HANDLE_VALUE; } // NOLINT(performance-no-int-to-ptr): the system's own value
    static void close(Value handle) { CloseHandle(handle); }
};
using UniqueFile = Owned<FileTraits>;

} // namespace torvane
