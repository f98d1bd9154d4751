#include "workbench/session/transfer.h"

#include "workbench/description/error_names.h"
#include "workbench/session/told_table.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace torvane::bench {
namespace {

std::uint32_t sectorSizeOf(BenchSession& session, const OpenDevice& device) {
    if (device.kind != PathKind::kVolume) {
        return device.drive->description().sectorSize;
    }
    std::uint32_t largest = 512;
    for (const VolumeExtent& extent : device.volume->extents) {
        largest = std::max(largest, session.drive(extent.disk)->description().sectorSize);
    }
    return largest;
}

std::uint64_t lengthOf(const OpenDevice& device) {
    return device.kind == PathKind::kVolume ? device.volume->length() : device.drive->description().size;
}

// What Windows looks at before a request goes to the drive.
DWORD checkPlace(BenchSession& session, const OpenDevice& device, std::uint64_t offset, std::uint64_t length) {
    const std::uint32_t sectorSize = sectorSizeOf(session, device);
    const std::uint64_t end = lengthOf(device);
    if (offset % sectorSize != 0 || length % sectorSize != 0) {
        return kErrorInvalidParameter;
    }
    if (length > 0 && (offset >= end || length > end - offset)) {
        return kErrorSectorNotFound;
    }
    return 0;
}

// Waits as long as the drive makes a transfer wait; the error of a drive that does not answer at all. That a slow
// transfer waits is logged, so that others can tell that it is under way.
std::optional<DWORD> waitForDrive(BenchFolder& folder, const BenchDrive& drive, std::uint64_t offset,
                                  std::uint64_t length) {
    if (const SilenceFault* const silence = drive.silence()) {
        folder.wait(silence->milliseconds);
        return silence->error;
    }
    if (const std::uint32_t slowness = drive.slownessMilliseconds(offset, length); slowness > 0) {
        LogLine line("drive:" + std::to_string(drive.description().number), "wait");
        folder.log(line.number("offset", offset).number("length", length).result(0));
        folder.wait(slowness);
    }
    return std::nullopt;
}

// A drive that is gone has lost what it had not flushed.
bool isPresent(BenchSession& session, const BenchDrive& drive) {
    const bool present = session.isPresent(drive);
    if (!present) {
        drive.loseUnflushed();
    }
    return present;
}
/// A handle of the content that a device reaches: its own, as long as nothing else has taken the drive's place.
class ContentHandle {
  public:
    ContentHandle(const OpenDevice& device, const BenchDrive& reached, HANDLE own)
        : other_(&reached == device.drive ? UniqueHandle()
                                          : reached.content().open(GENERIC_READ | GENERIC_WRITE, nullptr)),
          handle_(other_ ? other_.get() : own) {}

    [[nodiscard]] HANDLE get() const { return handle_; }

  private:
    UniqueHandle other_;
    HANDLE handle_;
};

// The drive's own part of reading: faults, then content. `handle`: one that the drive's content gave.
TransferResult readDrive(BenchSession& session, BenchDrive& drive, HANDLE handle, std::uint64_t offset,
                         std::span<std::uint8_t> out) {
    if (!isPresent(session, drive) || !drive.countTransfer()) {
        return {kErrorDeviceNotConnected, 0};
    }
    if (drive.description().empty) {
        return {kErrorNotReady, 0};
    }
    if (const std::optional<DWORD> error = waitForDrive(session.folder(), drive, offset, out.size())) {
        return {*error, 0};
    }
    if (const std::optional<DWORD> error = drive.readFault(offset, out.size())) {
        return {*error, 0};
    }
    if (const std::optional<std::uint32_t> most = drive.shortRead(offset, out.size())) {
        out = out.first(std::min<std::size_t>(*most, out.size()));
    }
    const DWORD error = drive.content().read(handle, offset, out);
    return {error, error == 0 ? static_cast<DWORD>(out.size()) : 0};
}

// A volume is the concatenation of its extents.
TransferResult readVolume(BenchSession& session, const VolumeDescription& volume, std::uint64_t offset,
                          std::span<std::uint8_t> out) {
    TransferResult sum;
    for (const VolumeExtent& extent : volume.extents) {
        if (offset >= extent.length) {
            offset -= extent.length;
            continue;
        }
        if (out.empty()) {
            break;
        }
        const auto here = static_cast<std::size_t>(std::min<std::uint64_t>(out.size(), extent.length - offset));
        BenchDrive& drive = *session.drive(extent.disk);
        const UniqueHandle content = drive.content().open(GENERIC_READ, nullptr);
        const TransferResult part =
            content ? readDrive(session, drive, content.get(), extent.offset + offset, out.first(here))
                    : TransferResult{GetLastError(), 0};
        sum.bytes += part.bytes;
        if (part.error != 0 || part.bytes < here) {
            sum.error = part.error;
            return sum;
        }
        out = out.subspan(here);
        offset = 0;
    }
    return sum;
}

// Windows lets nobody write inside a mounted volume through the disk beneath it.
bool touchesMountedVolume(BenchSession& session, std::uint32_t disk, std::uint64_t offset, std::uint64_t length) {
    const BenchState state = session.folder().state();
    for (const VolumeDescription& volume : session.description().volumes) {
        for (const VolumeExtent& extent : volume.extents) {
            if (extent.disk == disk && offset < extent.offset + extent.length && extent.offset < offset + length &&
                state.isMounted(volume)) {
                return true;
            }
        }
    }
    return false;
}

TransferResult writeDrive(BenchSession& session, BenchDrive& drive, HANDLE handle, std::uint64_t offset,
                          std::span<const std::uint8_t> data) {
    const DriveDescription& description = drive.description();
    if (!isPresent(session, drive)) {
        return {kErrorDeviceNotConnected, 0};
    }
    if (description.empty) {
        return {kErrorNotReady, 0};
    }
    if (session.folder().state().isReadOnly(description)) {
        return {kErrorWriteProtect, 0};
    }
    if (touchesMountedVolume(session, description.number, offset, data.size())) {
        return {kErrorAccessDenied, 0};
    }
    if (!drive.countTransfer()) {
        return {kErrorDeviceNotConnected, 0};
    }
    if (const std::optional<DWORD> error = waitForDrive(session.folder(), drive, offset, data.size())) {
        return {*error, 0};
    }
    if (const std::optional<DWORD> error = drive.writeFault(offset, data.size())) {
        return {*error, 0};
    }
    keepToldTable(session.folder(), session.description(), description, offset, data.size());
    const DWORD error =
        drive.store(handle, offset, data, [&] { return !session.folder().state().isUnplugged(description.number); });
    if (error == 0 && drive.countWrite()) {
        readTableAnew(session.folder(), session.description(), description);
    }
    return {error, error == 0 ? static_cast<DWORD>(data.size()) : 0};
}

DWORD flushDrive(BenchSession& session, BenchDrive& drive) {
    if (!isPresent(session, drive)) {
        return kErrorDeviceNotConnected;
    }
    if (const std::optional<DWORD> error = drive.flushFault()) {
        return *error;
    }
    drive.flush();
    return 0;
}

DWORD flushVolume(BenchSession& session, const VolumeDescription& volume) {
    for (const VolumeExtent& extent : volume.extents) {
        if (const DWORD error = flushDrive(session, *session.drive(extent.disk)); error != 0) {
            return error;
        }
    }
    return 0;
}

TransferResult readThrough(BenchSession& session, const OpenDevice& device, HANDLE handle, std::uint64_t offset,
                           std::span<std::uint8_t> out) {
    if (device.kind == PathKind::kVolume) {
        return readVolume(session, *device.volume, offset, out);
    }
    BenchDrive& drive = session.reached(device);
    return readDrive(session, drive, ContentHandle(device, drive, handle).get(), offset, out);
}

TransferResult writeThrough(BenchSession& session, const OpenDevice& device, HANDLE handle, std::uint64_t offset,
                            std::span<const std::uint8_t> data) {
    BenchDrive& drive = session.reached(device);
    return writeDrive(session, drive, ContentHandle(device, drive, handle).get(), offset, data);
}

bool hasSectors(const OpenDevice& device) {
    return device.kind == PathKind::kDrive || device.kind == PathKind::kVolume;
}

void logTransfer(BenchSession& session, const OpenDevice& device, std::string_view request, std::uint64_t offset,
                 std::uint64_t length, const TransferResult& result) {
    LogLine line(device.target(), request);
    line.number("offset", offset).number("length", length).result(result.error).number("bytes", result.bytes);
    session.folder().log(line);
}

} // namespace

TransferResult readDevice(BenchSession& session, OpenDevice& device, HANDLE handle, std::optional<std::uint64_t> offset,
                          std::span<std::uint8_t> out) {
    const std::lock_guard lock(device.transferMutex);
    const std::uint64_t place = offset.value_or(device.position);
    TransferResult result;
    if (!hasSectors(device)) {
        result.error = kErrorInvalidFunction;
    } else if (!device.mayRead()) {
        result.error = kErrorAccessDenied;
    } else {
        result.error = checkPlace(session, device, place, out.size());
    }
    if (result.error == 0 && !out.empty()) {
        result = readThrough(session, device, handle, place, out);
    }
    if (result.error == 0 && !offset) {
        device.position += result.bytes;
    }
    logTransfer(session, device, "read", place, out.size(), result);
    return result;
}

TransferResult writeDevice(BenchSession& session, OpenDevice& device, HANDLE handle,
                           std::optional<std::uint64_t> offset, std::span<const std::uint8_t> data) {
    const std::lock_guard lock(device.transferMutex);
    const std::uint64_t place = offset.value_or(device.position);
    TransferResult result;
    if (!hasSectors(device)) {
        result.error = kErrorInvalidFunction;
    } else if (!device.mayWrite() || device.kind == PathKind::kVolume) {
        result.error = kErrorAccessDenied;
    } else {
        result.error = checkPlace(session, device, place, data.size());
    }
    if (result.error == 0 && !data.empty()) {
        result = writeThrough(session, device, handle, place, data);
    }
    if (result.error == 0 && !offset) {
        device.position += result.bytes;
    }
    logTransfer(session, device, "write", place, data.size(), result);
    return result;
}

DWORD flushDevice(BenchSession& session, OpenDevice& device) {
    const std::lock_guard lock(device.transferMutex);
    DWORD error = kErrorInvalidFunction;
    if (hasSectors(device) && !device.mayWrite()) {
        error = kErrorAccessDenied;
    } else if (device.kind == PathKind::kVolume) {
        error = flushVolume(session, *device.volume);
    } else if (device.kind == PathKind::kDrive) {
        error = flushDrive(session, session.reached(device));
    }
    LogLine line(device.target(), "flush");
    session.folder().log(line.result(error));
    return error;
}

DWORD moveDevicePointer(BenchSession& session, OpenDevice& device, std::int64_t distance, DWORD method,
                        std::uint64_t& position) {
    const std::lock_guard lock(device.transferMutex);
    DWORD error = 0;
    std::int64_t base = 0;
    if (method == FILE_CURRENT) {
        base = static_cast<std::int64_t>(device.position);
    } else if (method == FILE_END) {
        error = kErrorInvalidFunction; // a disk has no file size
    } else if (method != FILE_BEGIN) {
        error = kErrorInvalidParameter;
    }
    // base is never negative, so only a positive distance can overflow.
    if (error == 0 && distance > 0 && base > std::numeric_limits<std::int64_t>::max() - distance) {
        error = kErrorInvalidParameter;
    }
    if (error == 0 && base + distance < 0) {
        error = ERROR_NEGATIVE_SEEK;
    }
    if (error == 0 && device.kind == PathKind::kDrive) {
        error = device.drive->seekFault(static_cast<std::uint64_t>(base + distance)).value_or(0);
    }
    if (error != 0) {
        LogLine line(device.target(), "seek");
        line.number("offset", static_cast<std::uint64_t>(distance)).number("length", 0).result(error);
        session.folder().log(line);
        return error;
    }
    device.position = position = static_cast<std::uint64_t>(base + distance);
    return 0;
}

} // namespace torvane::bench
