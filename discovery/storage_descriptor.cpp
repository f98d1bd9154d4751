#include "discovery/storage_descriptor.h"

#include "base/ascii.h"
#include "discovery/bus_type.h"
#include "discovery/device_text.h"
#include "records/drive_record.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace torvane {

namespace {

constexpr double kBytesPerGigabyte = 1073741824.0;

std::optional<std::string> textAt(ByteView descriptor, std::size_t offsetField) {
    const std::size_t offset = loadLe32(descriptor, offsetField);
    if (offset == 0 || offset >= descriptor.size()) {
        return std::nullopt;
    }
    const ByteView rest = descriptor.subspan(offset);
    return std::string(rest.begin(), std::find(rest.begin(), rest.end(), std::uint8_t{0}));
}

// A percent sign in a device's text is expanded as a printf format would be, not copied.
template <std::size_t Width>
void assignDeviceText(FixedText<Width>& field, const std::optional<std::string>& text) {
    if (text) {
        field.assign(expandDeviceText(*text));
    } else {
        field.assign(kNotAvailable);
    }
}

} // namespace

StorageDeviceTexts parseStorageDeviceDescriptor(ByteView descriptor) {
    return {
        .busType = static_cast<std::int32_t>(loadLe32(descriptor, 28)),
        .vendor = textAt(descriptor, 12),
        .product = textAt(descriptor, 16),
        .revision = textAt(descriptor, 20),
        .serialNumber = textAt(descriptor, 24),
    };
}

BusVersion parseStorageAdapterDescriptor(ByteView descriptor) {
    // Read as if the descriptor were packed, and kept: records compare with those of earlier scans.
    return {.major = loadLe16(descriptor, 25), .minor = loadLe16(descriptor, 27)};
}

DiskGeometry parseDiskGeometry(ByteView geometry) {
    return {.bytesPerSector = static_cast<std::int32_t>(loadLe32(geometry, 20)),
            .sizeBytes = static_cast<std::int64_t>(loadLe64(geometry, 24))};
}

void applyStorageDevice(DriveRecord& record, const StorageDeviceTexts& device) {
    record.device.descriptor = device;
    record.busType = device.busType;
    record.busText.assign(busTypeText(device.busType));
    assignDeviceText(record.vendor, device.vendor);
    assignDeviceText(record.product, device.product);
    assignDeviceText(record.firmware, device.revision);

    assignDeviceText(record.serialNumber, device.serialNumber);
    const std::string serial(trimBlanks(record.serialNumber.view()));
    record.serialNumber.assign(isPrintableAscii(serial) ? serial : kNotAvailable);
}

void applyDiskGeometry(DriveRecord& record, const DiskGeometry& geometry) {
    record.bytesPerSector = geometry.bytesPerSector;
    record.sizeBytes = geometry.sizeBytes;
    record.sizeSectors = geometry.sizeBytes / 512; // whatever the sector size
    record.sizeGigabytes = static_cast<double>(geometry.sizeBytes) / kBytesPerGigabyte;
}

} // namespace torvane
