#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>

namespace torvane::driver {

/// A zero-filled piece of memory inside the process that owns a window. Messages of the common controls carry pointers,
/// which must point into the control's own process.
class RemoteMemory {
  public:
    RemoteMemory(HWND window, std::size_t size);
    ~RemoteMemory();
    RemoteMemory(const RemoteMemory&) = delete;
    RemoteMemory& operator=(const RemoteMemory&) = delete;

    void write(std::size_t offset, const void* bytes, std::size_t size) const;
    void read(std::size_t offset, void* bytes, std::size_t size) const;
    /// The address in the other process.
    [[nodiscard]] std::uintptr_t address(std::size_t offset = 0) const;

  private:
    HANDLE process_ = nullptr;
    void* memory_ = nullptr;
};

} // namespace torvane::driver
