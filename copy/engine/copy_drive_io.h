#pragma once

#include "base/format.h"
#include "discovery/windows_drive_io.h"

namespace torvane {

/// Drives as a copy works with them: what the system says of a failed write goes through `ReportWriteError`.
class CopyDriveIo : public WindowsDriveIo {
  public:
    TransferOutcome write(const DriveRecord& drive, std::uint64_t offset, std::span<const std::byte> bytes) override;
};

/// Makes the calling thread's last error and the caller's text into words, and keeps neither: write errors show in the
/// count alone. Always 1.
int ReportWriteError(const char* format, ...) TORVANE_PRINTF_LIKE(1, 2);

} // namespace torvane
