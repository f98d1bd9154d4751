#include "discovery/windows_drive_io.h"

#include "base/positioned_io.h"

namespace torvane {

bool WindowsDriveIo::canReach(const DriveRecord& drive, std::uint64_t offset) {
    return torvane::canReach(drive.handle, offset);
}

TransferOutcome WindowsDriveIo::read(const DriveRecord& drive, std::uint64_t offset, std::span<std::byte> bytes) {
    return readAt(drive.handle, offset, bytes);
}

TransferOutcome WindowsDriveIo::write(const DriveRecord& drive, std::uint64_t offset,
                                      std::span<const std::byte> bytes) {
    return writeAt(drive.handle, offset, bytes);
}

TransferOutcome WindowsDriveIo::flush(const DriveRecord& drive) {
    return flushDrive(drive.handle);
}

} // namespace torvane
