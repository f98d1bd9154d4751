#pragma once

#include <windows.h>

#include <utility>

namespace torvane::bench {

/// Owns a kernel handle; null and INVALID_HANDLE_VALUE both mean that there is none.
class UniqueHandle {
  public:
    UniqueHandle() = default;
    explicit UniqueHandle(HANDLE handle) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
    UniqueHandle(UniqueHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    UniqueHandle(const UniqueHandle&) = delete;
    UniqueHandle& operator=(const UniqueHandle&) = delete;
    ~UniqueHandle() {
        if (handle_ != nullptr) {
            CloseHandle(handle_);
        }
    }

    [[nodiscard]] HANDLE get() const { return handle_; }
    [[nodiscard]] HANDLE release() { return std::exchange(handle_, nullptr); }
    explicit operator bool() const { return handle_ != nullptr; }

  private:
    HANDLE handle_ = nullptr;
};

} // namespace torvane::bench
