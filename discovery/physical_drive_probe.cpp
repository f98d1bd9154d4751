#include "discovery/physical_drive_probe.h"

#include "base/format.h"
#include "discovery/ata_identify.h"
#include "discovery/bus_type.h"
#include "discovery/device_request.h"
#include "discovery/disk_identity.h"
#include "discovery/owned_drive_record.h"
#include "discovery/storage_descriptor.h"
#include "discovery/storage_query.h"
#include "state/event_log.h"

#include <windows.h>

#include <winioctl.h>

#include <array>
#include <cstdint>
#include <string>
#include <utility>

namespace torvane {

namespace {

std::string drivePath(int driveNumber) {
    return formatText("\\\\.\\PhysicalDrive%d", driveNumber);
}

bool readGeometry(DriveRecord& record) {
    const auto geometry = readDiskGeometry(record.handle);
    if (geometry) {
        applyDiskGeometry(record, *geometry);
    }
    return geometry.has_value();
}

// Without an answer the texts stay empty and the bus type 0.
void readDeviceDescriptor(DriveRecord& record) {
    if (const auto device = readStorageDevice(record.handle)) {
        applyStorageDevice(record, *device);
    }
}

void readAdapterDescriptor(DriveRecord& record) {
    if (const auto version = readBusVersion(record.handle)) {
        record.busMajorVersion = version->major;
        record.busMinorVersion = version->minor;
    }
}

void setStartingValues(DriveRecord& record, int driveNumber) {
    record.driveNumber = driveNumber;
    record.identifyDriveNumber = driveNumber;
    record.recordKind = kRecordKindPhysicalDrive;
    record.busCode = kBusCodeDirect;
    record.smartType = kSmartTypeUnknown;
    // Zeros, which the dials show of a drive whose report says "Solid", but not "Solid State Device": it has a flash
    // drive's panel, and the pass that would fill these counters leaves it alone.
    record.ssd.fill(0);
}

/// False when the bus is not supported.
bool settleByBusType(DriveRecord& record) {
    switch (record.busType) {
    case kBusTypeScsi:
        identifyOverAta(record);
        return true;
    case kBusTypeAta:
    case kBusTypeSata:
        record.smartType = kSmartTypeStandard;
        identifyOverAta(record);
        return true;
    case kBusTypeUsb:
        record.model.assign(record.vendor.view());
        record.smartType = kSmartTypeStandard;
        record.busCode = kBusCodeUsb;
        LogEvent("DIAG", "USB PHYS [%s]", record.devicePath.c_str());
        return true;
    case kBusTypeRaid:
        record.smartType = kSmartTypeStandard;
        record.model.assign(record.product.view());
        return true;
    case kBusTypeNvme:
        record.model.assign(record.product.view());
        record.busCode = kBusCodeNvme;
        record.smartType = kSmartTypeNvme;
        return true;
    default:
        LogEvent("FAILURE", "Unsupported Bus Type [%s] BUS: [%d] for Physical Device [%d]", record.busText.c_str(),
                 record.busType, record.driveNumber);
        return false;
    }
}

} // namespace

NativeHandle openDriveByNumber(int driveNumber) {
    return openDevice(drivePath(driveNumber).c_str(), 0);
}

ProbedDrive probeDriveNumber(int driveNumber) {
    DriveRecordPtr record = makeOwnedDriveRecord();
    record->devicePath.assign(drivePath(driveNumber));
    record->handle = openDriveByNumber(driveNumber);
    if (record->handle == nullptr || !readGeometry(*record)) {
        return {};
    }
    readDeviceDescriptor(*record);
    readAdapterDescriptor(*record);
    setStartingValues(*record, driveNumber);
    if (!settleByBusType(*record)) {
        return {.record = nullptr, .isUnsupported = true};
    }
    return {.record = std::move(record), .isUnsupported = false};
}

DriveRecordPtr ProbePhysicalDrive(int driveNumber) {
    return probeDriveNumber(driveNumber).record;
}

int identifyOverAta(DriveRecord& record) {
    const auto request = ataIdentifyRequest(record.identifyDriveNumber);
    std::array<std::uint8_t, kAtaAnswerBytes> answer{};
    if (!requestFromDevice(record.handle, SMART_RCV_DRIVE_DATA, request, answer)) {
        return 0;
    }
    // Drivers differ in the length they return; what they did not write is zero.
    applyAtaIdentify(record, ByteView(answer).subspan(kAtaAnswerHeaderBytes));
    return 1;
}

} // namespace torvane
