#pragma once

#include "workbench/session/drive_content.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>

namespace torvane::bench {

/// The write cache of a drive that loses it when the drive is unplugged. Writes go to the drive's content at once,
/// where every process sees them; what lay under them is kept in a file beside the content until the next flush, and
/// put back when the cache is lost. So the end of a process loses nothing, and an unplugged drive loses the same in
/// each.
class VolatileCache {
  public:
    VolatileCache(const std::filesystem::path& benchFolder, const DriveDescription& drive);

    /// Writes through `handle`, one that the content gave. While `isPluggedIn` is asked and the bytes are stored nobody
    /// loses or flushes the cache. Returns a Win32 error, 0 for success.
    [[nodiscard]] DWORD write(const DriveContent& content, HANDLE handle, std::uint64_t offset,
                              std::span<const std::uint8_t> data, const std::function<bool()>& isPluggedIn) const;

    /// What was written stays.
    void flush() const;

    /// What was written since the last flush is lost.
    void lose(const DriveContent& content) const;

  private:
    std::filesystem::path file_;
};

/// A drive is unplugged, or another one takes its place: what a volatile cache of it held is lost.
void loseUnflushed(const std::filesystem::path& benchFolder, const DriveDescription& drive);

} // namespace torvane::bench
