#include "workbench/devices/storage_property.h"

#include "base/bytes.h"

#include <optional>
#include <string>

namespace torvane::bench {
namespace {

constexpr std::uint32_t kHeads = 255;
constexpr std::uint32_t kSectorsPerTrack = 63;
constexpr std::uint32_t kRemovableMedia = 11; // MEDIA_TYPE
constexpr std::uint32_t kFixedMedia = 12;

// STORAGE_DEVICE_DESCRIPTOR, <winioctl.h>.
constexpr std::size_t kDescriptorHeader = 36;
constexpr std::size_t kVersionAt = 0;
constexpr std::size_t kSizeAt = 4;
constexpr std::size_t kRemovableAt = 10;
constexpr std::size_t kCommandQueueingAt = 11;
constexpr std::size_t kVendorOffsetAt = 12;
constexpr std::size_t kProductOffsetAt = 16;
constexpr std::size_t kRevisionOffsetAt = 20;
constexpr std::size_t kSerialOffsetAt = 24;
constexpr std::size_t kBusTypeAt = 28;

// Appends the text with its NUL and tells its place; an absent text has place 0.
void placeText(Bytes& bytes, std::size_t offsetAt, const std::optional<std::string>& text) {
    if (!text) {
        return;
    }
    storeLe<std::uint32_t>(bytes, offsetAt, static_cast<std::uint32_t>(bytes.size()));
    bytes.insert(bytes.end(), text->begin(), text->end());
    bytes.push_back(0);
}

void override32(Bytes& bytes, std::size_t at, const std::optional<std::uint32_t>& value) {
    if (value) {
        storeLe<std::uint32_t>(bytes, at, *value);
    }
}

// DISK_ATTRIBUTE_READ_ONLY, <winioctl.h>.
constexpr std::uint64_t kAttributeReadOnly = 2;

} // namespace

Bytes diskAttributes(bool readOnly) {
    Bytes bytes(16);
    storeLe<std::uint32_t>(bytes, 0, static_cast<std::uint32_t>(bytes.size()));
    storeLe<std::uint64_t>(bytes, 8, readOnly ? kAttributeReadOnly : 0);
    return bytes;
}

Bytes driveGeometry(const DriveDescription& drive) {
    Bytes bytes(24);
    const std::uint64_t cylinderBytes = std::uint64_t{kHeads} * kSectorsPerTrack * drive.sectorSize;
    storeLe<std::uint64_t>(bytes, 0, drive.size / cylinderBytes);
    storeLe<std::uint32_t>(bytes, 8, drive.removable ? kRemovableMedia : kFixedMedia);
    storeLe<std::uint32_t>(bytes, 12, kHeads);
    storeLe<std::uint32_t>(bytes, 16, kSectorsPerTrack);
    storeLe<std::uint32_t>(bytes, 20, drive.sectorSize);
    return bytes;
}

Bytes driveGeometryEx(const DriveDescription& drive) {
    Bytes bytes = driveGeometry(drive);
    bytes.resize(32);
    storeLe<std::uint64_t>(bytes, 24, drive.size);
    return bytes;
}

Bytes deviceNumber(const DriveDescription& drive) {
    constexpr std::uint32_t kDiskDevice = 7; // FILE_DEVICE_DISK, <winioctl.h>
    Bytes bytes(12);
    storeLe<std::uint32_t>(bytes, 0, kDiskDevice);
    storeLe<std::uint32_t>(bytes, 4, drive.number);
    return bytes;
}

Bytes deviceDescriptor(const DriveDescription& drive) {
    Bytes bytes(kDescriptorHeader);
    placeText(bytes, kVendorOffsetAt, drive.identity.vendor);
    placeText(bytes, kProductOffsetAt, drive.identity.product);
    placeText(bytes, kRevisionOffsetAt, drive.identity.revision);
    placeText(bytes, kSerialOffsetAt, descriptorSerial(drive));
    // Version is the structure's own length; Size counts the texts too.
    storeLe<std::uint32_t>(bytes, kVersionAt, 40);
    storeLe<std::uint32_t>(bytes, kSizeAt, static_cast<std::uint32_t>(bytes.size()));
    bytes[kRemovableAt] = drive.removable ? 1 : 0;
    bytes[kCommandQueueingAt] = 1;
    storeLe<std::uint32_t>(bytes, kBusTypeAt, drive.bus);

    override32(bytes, kVendorOffsetAt, drive.descriptor.vendorOffset);
    override32(bytes, kProductOffsetAt, drive.descriptor.productOffset);
    override32(bytes, kRevisionOffsetAt, drive.descriptor.revisionOffset);
    override32(bytes, kSerialOffsetAt, drive.descriptor.serialOffset);
    override32(bytes, kSizeAt, drive.descriptor.size);
    override32(bytes, kBusTypeAt, drive.descriptor.busType);
    if (drive.descriptor.returnedLength && *drive.descriptor.returnedLength < bytes.size()) {
        bytes.resize(*drive.descriptor.returnedLength);
    }
    return bytes;
}

Bytes adapterDescriptor(const DriveDescription& drive) {
    constexpr std::uint32_t kLength = 32;
    Bytes bytes(kLength);
    storeLe<std::uint32_t>(bytes, 0, kLength);
    storeLe<std::uint32_t>(bytes, 4, kLength);
    storeLe<std::uint32_t>(bytes, 8, drive.adapter.maximumTransfer);
    storeLe<std::uint32_t>(bytes, 12, drive.adapter.maximumTransfer / 4096 + 1); // pages
    storeLe<std::uint32_t>(bytes, 16, 1);                                        // buffers on even addresses
    bytes[22] = 1;                                                               // command queueing
    bytes[24] = static_cast<std::uint8_t>(drive.bus);
    storeLe<std::uint16_t>(bytes, 26, drive.adapter.busMajorVersion);
    storeLe<std::uint16_t>(bytes, 28, drive.adapter.busMinorVersion);
    return bytes;
}

} // namespace torvane::bench
