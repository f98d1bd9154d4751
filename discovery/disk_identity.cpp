#include "discovery/disk_identity.h"

#include "base/bytes.h"
#include "discovery/device_request.h"

#include <windows.h>

#include <winioctl.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace torvane {

namespace {

// DISK_GEOMETRY_EX: 24 bytes of DISK_GEOMETRY, the 64-bit size, and the first byte of what may follow.
constexpr std::size_t kGeometryBytes = 33;

/// N of "\\.\PhysicalDriveN". None when the device does not answer.
std::optional<std::int32_t> readDeviceNumber(NativeHandle device) {
    // STORAGE_DEVICE_NUMBER: device type, device number, partition number, 32 bits each.
    constexpr std::size_t kNumberOffset = 4;
    std::array<std::uint8_t, sizeof(STORAGE_DEVICE_NUMBER)> buffer{};
    const auto answer = requestFromDevice(device, IOCTL_STORAGE_GET_DEVICE_NUMBER, {}, buffer);
    if (!answer || answer->size() < buffer.size()) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(loadLe32(*answer, kNumberOffset));
}

} // namespace

std::optional<DiskGeometry> readDiskGeometry(NativeHandle device) {
    std::array<std::uint8_t, kGeometryBytes> buffer{};
    const auto answer = requestFromDevice(device, IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, {}, buffer);
    return answer ? std::optional(parseDiskGeometry(*answer)) : std::nullopt;
}

std::optional<PartitionTable> readPartitionTable(NativeHandle device) {
    // Room for the 128 entries that a GPT has by default.
    constexpr std::size_t kLayoutBytes = 48 + 128 * 144;
    std::vector<std::uint8_t> buffer(kLayoutBytes);
    const auto answer = requestFromDevice(device, IOCTL_DISK_GET_DRIVE_LAYOUT_EX, {}, buffer);
    return answer ? parseDriveLayout(*answer) : std::nullopt;
}

bool isStillTheProbedDisk(const DriveRecord& drive) {
    if (drive.recordKind == kRecordKindImageFile) {
        return true;
    }
    const auto geometry = readDiskGeometry(drive.handle);
    return readDeviceNumber(drive.handle) == drive.driveNumber && geometry && geometry->sizeBytes == drive.sizeBytes;
}

bool isStillTheProbedSource(const DriveRecord& drive) {
    return isStillTheProbedDisk(drive);
}

void rememberPartitionTable(DriveRecord& drive) {
    static_cast<void>(drive);
}

} // namespace torvane
