#include "workbench/session/control.h"

#include "base/bytes.h"
#include "workbench/description/error_names.h"
#include "workbench/devices/storage_property.h"
#include "workbench/session/control_parts.h"
#include "workbench/session/told_table.h"

#include <winioctl.h>

#include <ntddscsi.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace torvane::bench {
namespace {

struct NamedCode {
    DWORD code;
    const char* name;
};

// <winioctl.h> of Windows 7 on; mingw's has it not.
constexpr DWORD kGetDiskAttributes = CTL_CODE(IOCTL_DISK_BASE, 0x003c, METHOD_BUFFERED, FILE_ANY_ACCESS);

// <mountmgr.h>; mingw's has it not.
constexpr DWORD kQueryAutoMount = CTL_CODE('m', 15, METHOD_BUFFERED, FILE_ANY_ACCESS);

constexpr std::array kNames = {
    NamedCode{kQueryAutoMount, "IOCTL_MOUNTMGR_QUERY_AUTO_MOUNT"},
    NamedCode{kGetDiskAttributes, "IOCTL_DISK_GET_DISK_ATTRIBUTES"},
    NamedCode{IOCTL_DISK_GET_DRIVE_GEOMETRY, "IOCTL_DISK_GET_DRIVE_GEOMETRY"},
    NamedCode{IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, "IOCTL_DISK_GET_DRIVE_GEOMETRY_EX"},
    NamedCode{IOCTL_DISK_GET_DRIVE_LAYOUT_EX, "IOCTL_DISK_GET_DRIVE_LAYOUT_EX"},
    NamedCode{IOCTL_DISK_GET_LENGTH_INFO, "IOCTL_DISK_GET_LENGTH_INFO"},
    NamedCode{IOCTL_DISK_UPDATE_PROPERTIES, "IOCTL_DISK_UPDATE_PROPERTIES"},
    NamedCode{IOCTL_STORAGE_CHECK_VERIFY, "IOCTL_STORAGE_CHECK_VERIFY"},
    NamedCode{IOCTL_STORAGE_GET_DEVICE_NUMBER, "IOCTL_STORAGE_GET_DEVICE_NUMBER"},
    NamedCode{IOCTL_STORAGE_QUERY_PROPERTY, "IOCTL_STORAGE_QUERY_PROPERTY"},
    NamedCode{IOCTL_SCSI_GET_ADDRESS, "IOCTL_SCSI_GET_ADDRESS"},
    NamedCode{IOCTL_SCSI_MINIPORT, "IOCTL_SCSI_MINIPORT"},
    NamedCode{IOCTL_SCSI_PASS_THROUGH, "IOCTL_SCSI_PASS_THROUGH"},
    NamedCode{IOCTL_SCSI_PASS_THROUGH_DIRECT, "IOCTL_SCSI_PASS_THROUGH_DIRECT"},
    NamedCode{IOCTL_ATA_PASS_THROUGH, "IOCTL_ATA_PASS_THROUGH"},
    NamedCode{SMART_GET_VERSION, "SMART_GET_VERSION"},
    NamedCode{SMART_SEND_DRIVE_COMMAND, "SMART_SEND_DRIVE_COMMAND"},
    NamedCode{SMART_RCV_DRIVE_DATA, "SMART_RCV_DRIVE_DATA"},
    NamedCode{IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, "IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS"},
};

constexpr std::size_t kLoggedUnknown = 64; // bytes of a request that the bench does not know

// What a device without a medium cannot tell.
bool asksForMedium(DWORD code) {
    static constexpr std::array kCodes = {
        static_cast<DWORD>(IOCTL_DISK_GET_DRIVE_GEOMETRY), static_cast<DWORD>(IOCTL_DISK_GET_DRIVE_GEOMETRY_EX),
        static_cast<DWORD>(IOCTL_DISK_GET_DRIVE_LAYOUT_EX), static_cast<DWORD>(IOCTL_DISK_GET_LENGTH_INFO),
        static_cast<DWORD>(IOCTL_STORAGE_CHECK_VERIFY)};
    return std::ranges::find(kCodes, code) != kCodes.end();
}

ControlResult driveRequest(BenchSession& session, BenchDrive& drive, const ControlRequest& request, LogLine& line) {
    const DriveDescription& description = drive.description();
    if (description.empty && asksForMedium(request.code)) {
        return {kErrorNotReady, 0};
    }
    switch (request.code) {
    case kGetDiskAttributes:
        return giveWhole(request, diskAttributes(session.folder().state().isReadOnly(description)));
    case IOCTL_DISK_GET_DRIVE_GEOMETRY:
        return giveWhole(request, driveGeometry(description));
    case IOCTL_DISK_GET_DRIVE_GEOMETRY_EX:
        return giveWhole(request, driveGeometryEx(description));
    case IOCTL_DISK_GET_DRIVE_LAYOUT_EX:
        return partitionLayout(session, drive, request);
    case IOCTL_DISK_UPDATE_PROPERTIES:
        readTableAnew(session.folder(), session.description(), description);
        return {0, 0};
    case IOCTL_STORAGE_CHECK_VERIFY:
        return mediaChanges(session, drive, request);
    case IOCTL_DISK_GET_LENGTH_INFO: {
        std::array<std::uint8_t, 8> length{};
        storeLe<std::uint64_t>(length, 0, description.size);
        return giveWhole(request, length);
    }
    case IOCTL_STORAGE_GET_DEVICE_NUMBER:
        return giveWhole(request, deviceNumber(description));
    case IOCTL_STORAGE_QUERY_PROPERTY:
        return queryProperty(drive, request, line);
    case SMART_GET_VERSION:
        return smartVersion(drive, request);
    case SMART_RCV_DRIVE_DATA:
    case SMART_SEND_DRIVE_COMMAND:
        return smartCommand(drive, request, line);
    case IOCTL_ATA_PASS_THROUGH:
        return ataPassThrough(drive, request, line);
    case IOCTL_SCSI_PASS_THROUGH:
        return scsiPassThrough(drive, request, false, line);
    case IOCTL_SCSI_PASS_THROUGH_DIRECT:
        return scsiPassThrough(drive, request, true, line);
    case IOCTL_SCSI_GET_ADDRESS:
        return scsiAddress(drive, request);
    default:
        line.hex("data", requestBytes(request, kLoggedUnknown));
        return {kErrorInvalidFunction, 0};
    }
}

ControlResult portRequest(BenchDrive& drive, const ControlRequest& request, LogLine& line) {
    if (request.code == IOCTL_SCSI_MINIPORT) {
        return scsiMiniport(drive, request, line);
    }
    line.hex("data", requestBytes(request, kLoggedUnknown));
    return {kErrorInvalidFunction, 0};
}

ControlResult volumeRequest(BenchSession& session, const VolumeDescription& volume, const ControlRequest& request,
                            LogLine& line) {
    if (request.code == IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS) {
        return volumeExtents(volume, request);
    }
    // What a volume on a single disk does not know itself is its disk's matter.
    if (volume.extents.size() == 1) {
        return driveRequest(session, *session.drive(volume.extents.front().disk), request, line);
    }
    line.hex("data", requestBytes(request, kLoggedUnknown));
    return {kErrorInvalidFunction, 0};
}

ControlResult mountManagerRequest(BenchSession& session, const ControlRequest& request, LogLine& line) {
    if (request.code == kQueryAutoMount) {
        std::array<std::uint8_t, 4> state{};
        storeLe<std::uint32_t>(state, 0, session.folder().state().automount ? 1 : 0);
        return giveWhole(request, state);
    }
    line.hex("data", requestBytes(request, kLoggedUnknown));
    return {kErrorInvalidFunction, 0};
}

ControlResult answer(BenchSession& session, OpenDevice& device, const ControlRequest& request, LogLine& line) {
    if (device.kind == PathKind::kMountManager) {
        return mountManagerRequest(session, request, line);
    }
    if (device.kind == PathKind::kVolume) {
        return volumeRequest(session, *device.volume, request, line);
    }
    BenchDrive& drive = session.reached(device);
    if (!session.isPresent(drive)) {
        return {kErrorDeviceNotConnected, 0};
    }
    if (const std::optional<DWORD> error = drive.requestFault(controlName(request.code))) {
        return {*error, 0};
    }
    return device.kind == PathKind::kScsiPort ? portRequest(drive, request, line)
                                              : driveRequest(session, drive, request, line);
}

} // namespace

std::string controlName(DWORD code) {
    const auto found = std::find_if(kNames.begin(), kNames.end(), [&](const NamedCode& n) { return n.code == code; });
    if (found != kNames.end()) {
        return found->name;
    }
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "ioctl:0x%08lx", code);
    return text.data();
}

std::span<const std::uint8_t> requestBytes(const ControlRequest& request, std::size_t length) {
    return std::span(request.in).first(std::min(request.in.size(), length));
}

ControlResult giveAsMuchAsFits(const ControlRequest& request, std::span<const std::uint8_t> answer) {
    const std::size_t count = std::min(answer.size(), request.out.size());
    std::copy_n(answer.begin(), count, request.out.begin());
    return {0, static_cast<DWORD>(count)};
}

ControlResult giveWhole(const ControlRequest& request, std::span<const std::uint8_t> answer) {
    if (request.out.size() < answer.size()) {
        return {kErrorInsufficientBuffer, 0};
    }
    return giveAsMuchAsFits(request, answer);
}

ControlResult controlDevice(BenchSession& session, OpenDevice& device, const ControlRequest& request) {
    LogLine line(device.target(), controlName(request.code));
    line.number("in", request.in.size()).number("out", request.out.size());
    const ControlResult result = answer(session, device, request, line);
    line.result(result.error).number("bytes", result.bytes);
    session.folder().log(line);
    return result;
}

} // namespace torvane::bench
