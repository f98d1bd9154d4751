#pragma once

#include "workbench/session/bench_session.h"

#include <cstdint>
#include <optional>
#include <span>

namespace torvane::bench {

/// How a transfer or a move of the file pointer ended.
struct TransferResult {
    DWORD error = 0;
    DWORD bytes = 0;
};

/// Reads from a drive or volume as Windows does from a raw disk. `offset`: nothing for the handle's own position, which
/// then moves behind the bytes that were read.
[[nodiscard]] TransferResult readDevice(BenchSession& session, OpenDevice& device, HANDLE handle,
                                        std::optional<std::uint64_t> offset, std::span<std::uint8_t> out);

/// The same for writing. Volumes take no writes: nobody on a bench locks them first.
[[nodiscard]] TransferResult writeDevice(BenchSession& session, OpenDevice& device, HANDLE handle,
                                         std::optional<std::uint64_t> offset, std::span<const std::uint8_t> data);

/// Brings what was written onto the medium, as FlushFileBuffers does. Returns a Win32 error, 0 for success.
[[nodiscard]] DWORD flushDevice(BenchSession& session, OpenDevice& device);

/// Moves the handle's position as SetFilePointerEx does; `method` is FILE_BEGIN, FILE_CURRENT or FILE_END.
/// `position` becomes the new one. Returns a Win32 error, 0 for success.
[[nodiscard]] DWORD moveDevicePointer(BenchSession& session, OpenDevice& device, std::int64_t distance, DWORD method,
                                      std::uint64_t& position);

} // namespace torvane::bench
