#include "discovery/disk_identity.h"

#include "base/ascii.h"
#include "base/bytes.h"
#include "discovery/controller_identity.h"
#include "discovery/device_request.h"
#include "discovery/nvme_command.h"
#include "discovery/nvme_storage_query.h"
#include "discovery/storage_query.h"

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

/// N of "\\.\PhysicalDriveN". None when the device does not answer, GetLastError telling why.
std::optional<std::int32_t> readDeviceNumber(NativeHandle device) {
    // STORAGE_DEVICE_NUMBER: device type, device number, partition number, 32 bits each.
    constexpr std::size_t kNumberOffset = 4;
    std::array<std::uint8_t, sizeof(STORAGE_DEVICE_NUMBER)> buffer{};
    const auto answer = requestFromDevice(device, IOCTL_STORAGE_GET_DEVICE_NUMBER, {}, buffer);
    if (!answer) {
        return std::nullopt;
    }
    if (answer->size() < buffer.size()) {
        SetLastError(ERROR_INVALID_DATA);
        return std::nullopt;
    }
    return static_cast<std::int32_t>(loadLe32(*answer, kNumberOffset));
}

/// How often the device has had another medium since its driver started. The request also makes the driver look for a
/// medium that was changed since it looked last, so that what it tells next is that medium's.
std::optional<std::uint32_t> readMediaChanges(NativeHandle device) {
    std::array<std::uint8_t, sizeof(std::uint32_t)> buffer{};
    const auto ask = [&] { return requestFromDevice(device, IOCTL_STORAGE_CHECK_VERIFY, {}, buffer); };
    auto answer = ask();
    // A driver that has just found another medium fails the request that found it, and answers the next one.
    if (!answer && (GetLastError() == ERROR_MEDIA_CHANGED || GetLastError() == ERROR_IO_DEVICE)) {
        answer = ask();
    }
    return answer && answer->size() == buffer.size() ? std::optional(loadLe32(*answer, 0)) : std::nullopt;
}

/// What the disk is asked for.
enum class Use {
    kDestination, ///< will be changed: all has to be told again
    kSource,      ///< will be read: it may be failing
};

bool hasTheProbedNumber(const DriveRecord& drive, Use use) {
    if (const auto number = readDeviceNumber(drive.handle)) {
        return *number == drive.driveNumber;
    }
    return isUnknownRequest(GetLastError()) && use == Use::kSource;
}

bool hasTheProbedSize(const DriveRecord& drive) {
    const auto geometry = readDiskGeometry(drive.handle);
    return geometry && geometry->sizeBytes == drive.sizeBytes;
}

/// What the controller tells of itself by storage query. None when it does not answer.
std::optional<PrintedIdentity> readControllerIdentity(NativeHandle device) {
    StorageQueryBuffer buffer = storageQueryIdentifyRequest();
    const auto reply = requestFromDevice(device, IOCTL_STORAGE_QUERY_PROPERTY, buffer, buffer);
    const auto identify = reply ? storageQueryData(*reply, kNvmeIdentifySize) : std::nullopt;
    return identify ? std::optional(parseControllerIdentity(*identify)) : std::nullopt;
}

/// Asked of NVMe drives that told it by storage query. The scan's other roads to a controller are not gone again.
bool hasTheProbedController(const DriveRecord& drive, Use use) {
    if (drive.busCode != kBusCodeNvme || drive.printed == PrintedIdentity{}) {
        return true;
    }
    const std::optional<PrintedIdentity> now = readControllerIdentity(drive.handle);
    return now ? *now == drive.printed : use == Use::kSource;
}

bool isTheProbedDevice(const DriveRecord& drive, Use use) {
    const bool same = !drive.device.descriptor || isSameDevice(drive.device, readStorageDevice(drive.handle));
    return same && hasTheProbedController(drive, use);
}

/// A disk that was never initialised has a table without a name.
bool namesItsDisk(const PartitionTable& table) {
    return table.mbrSignature != 0 || table.gptDiskId != PartitionTable{}.gptDiskId;
}

// What was never told is not asked for.
bool holdsTheProbedMedium(const DriveRecord& drive, Use use) {
    const FoundAgain worst = use == Use::kSource ? FoundAgain::kNotTold : FoundAgain::kSame;
    const std::optional<std::uint32_t>& changes = drive.device.mediaChanges;
    // First, since the driver may find only then that its medium was changed, and with it the table.
    const FoundAgain count = changes ? findAgain(changes, readMediaChanges(drive.handle)) : FoundAgain::kSame;
    const bool mayBeAnother = count > worst;
    if (mayBeAnother && use == Use::kDestination) {
        return false;
    }
    const std::optional<PartitionTable> table = drive.partitionTable.get();
    const FoundAgain found = table ? findAgain(table, readPartitionTable(drive.handle)) : FoundAgain::kSame;
    if (mayBeAnother) {
        return table && namesItsDisk(*table) && found == FoundAgain::kSame;
    }
    return found <= worst;
}

/// True when the record's handle reaches the disk that was probed, and the medium that it then had.
bool isStillTheProbed(const DriveRecord& drive, Use use) {
    if (drive.recordKind == kRecordKindImageFile) {
        return true;
    }
    // The medium first: its driver may find only then that it was changed, and with it the size.
    return holdsTheProbedMedium(drive, use) && hasTheProbedNumber(drive, use) && hasTheProbedSize(drive) &&
           isTheProbedDevice(drive, use);
}

} // namespace

std::optional<DiskGeometry> readDiskGeometry(NativeHandle device) {
    std::array<std::uint8_t, kGeometryBytes> buffer{};
    const auto answer = requestFromDevice(device, IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, {}, buffer);
    return answer ? std::optional(parseDiskGeometry(*answer)) : std::nullopt;
}

std::optional<PartitionTable> readPartitionTable(NativeHandle device) {
    // DRIVE_LAYOUT_INFORMATION_EX: 48 bytes, then 144 for each entry. Room for the 128 that a GPT has by default; no
    // table within reason needs the most.
    constexpr std::size_t kLayoutBytes = 48 + 128 * 144;
    constexpr std::size_t kMostBytes = 64 * kLayoutBytes;
    for (std::size_t size = kLayoutBytes; size <= kMostBytes; size *= 2) {
        std::vector<std::uint8_t> buffer(size);
        if (const auto answer = requestFromDevice(device, IOCTL_DISK_GET_DRIVE_LAYOUT_EX, {}, buffer)) {
            return parseDriveLayout(*answer);
        }
        if (GetLastError() != ERROR_INSUFFICIENT_BUFFER) {
            break;
        }
    }
    return std::nullopt;
}

bool isStillTheProbedDisk(const DriveRecord& drive) {
    return isStillTheProbed(drive, Use::kDestination);
}

bool isStillTheProbedSource(const DriveRecord& drive) {
    return isStillTheProbed(drive, Use::kSource);
}

bool isTheProbedDiskAgain(const DriveRecord& drive, NativeHandle device) {
    DriveRecord found = drive;
    found.handle = device;
    // Before its table, which a drive may have to be spun up for.
    if (!hasTheProbedSize(found) || !isTheProbedDevice(found, Use::kSource)) {
        return false;
    }
    const std::optional<PartitionTable> table = drive.partitionTable.get();
    // A serial number counts that was just compared, with the rest of the descriptor.
    const std::optional<StorageDeviceTexts>& descriptor = drive.device.descriptor;
    const bool isNamed =
        descriptor && descriptor->serialNumber && !withoutBlanksAround(*descriptor->serialNumber).empty();
    const FoundAgain again = table ? findAgain(table, readPartitionTable(device)) : FoundAgain::kNotTold;
    const bool hasNamedTable = again == FoundAgain::kSame && namesItsDisk(*table);
    return again != FoundAgain::kOther && (isNamed || hasNamedTable);
}

void rememberMediaChanges(DriveRecord& drive) {
    drive.device.mediaChanges = readMediaChanges(drive.handle);
}

void rememberPartitionTable(DriveRecord& drive) {
    if (drive.recordKind != kRecordKindImageFile) {
        drive.partitionTable.set(readPartitionTable(drive.handle));
    }
}

void rememberToldPartitionTable(DriveRecord& drive) {
    if (drive.recordKind == kRecordKindImageFile) {
        return;
    }
    if (const std::optional<PartitionTable> table = readPartitionTable(drive.handle)) {
        drive.partitionTable.set(table);
    }
}

} // namespace torvane
