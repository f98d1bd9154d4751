#pragma once

#include "discovery/drive_io.h"

namespace torvane {

/// Drives as Windows reaches them, by the handle of their record. `GetLastError` tells why a transfer failed.
class WindowsDriveIo : public DriveIo {
  public:
    bool canReach(const DriveRecord& drive, std::uint64_t offset) override;
    TransferOutcome read(const DriveRecord& drive, std::uint64_t offset, std::span<std::byte> bytes) override;
    TransferOutcome write(const DriveRecord& drive, std::uint64_t offset, std::span<const std::byte> bytes) override;
    TransferOutcome flush(const DriveRecord& drive) override;
};

} // namespace torvane
