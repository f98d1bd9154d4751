#pragma once

#include "workbench/description/drive_description.h"
#include "workbench/session/unique_handle.h"

#include <cstdint>
#include <filesystem>
#include <span>

namespace torvane::bench {

/// The bytes of one drive: a sparse file in the bench's backing folder, or a computed pattern.
class DriveContent {
  public:
    DriveContent(const std::filesystem::path& benchFolder, const DriveDescription& drive);

    /// A new kernel handle that stands for the drive: of its backing file, made when it is missing, or of its
    /// description when the content is computed. `access`: as given to CreateFile. Empty when the system refuses; the
    /// error is then the thread's last error.
    [[nodiscard]] UniqueHandle open(DWORD access, LPSECURITY_ATTRIBUTES security) const;

    /// Transfers through a handle that `open` gave. Returns a Win32 error, 0 for success.
    [[nodiscard]] DWORD read(HANDLE handle, std::uint64_t offset, std::span<std::uint8_t> out) const;
    [[nodiscard]] DWORD write(HANDLE handle, std::uint64_t offset, std::span<const std::uint8_t> data) const;

    [[nodiscard]] bool isPattern() const { return drive_.backing.kind != BackingKind::kFile; }

  private:
    void makeFile() const;

    const DriveDescription& drive_;
    std::filesystem::path file_;
    std::filesystem::path description_;
};

} // namespace torvane::bench
