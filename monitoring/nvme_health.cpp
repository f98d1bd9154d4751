#include "monitoring/nvme_health.h"

#include "base/bytes.h"
#include "base/format.h"
#include "base/owned_handle.h"
#include "discovery/controller_identity.h"
#include "discovery/device_request.h"
#include "discovery/nvme_storage_query.h"
#include "monitoring/health_log.h"
#include "monitoring/nvme_raid_driver.h"
#include "monitoring/nvme_usb_bridge.h"
#include "records/drive_record.h"

#include <windows.h>

#include <winioctl.h>

#include <ntddscsi.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {
namespace {

// The layouts that the requests are built with are those of the system's own headers.
static_assert(kIoctlStorageQueryProperty == IOCTL_STORAGE_QUERY_PROPERTY);
static_assert(kIoctlScsiMiniport == IOCTL_SCSI_MINIPORT);
static_assert(kIoctlScsiPassThrough == IOCTL_SCSI_PASS_THROUGH);
static_assert(sizeof(SRB_IO_CONTROL) == 28 && offsetof(SRB_IO_CONTROL, ReturnCode) == 20);
static_assert(sizeof(SCSI_PASS_THROUGH) == 56 && offsetof(SCSI_PASS_THROUGH, DataBufferOffset) == 24);
static_assert(offsetof(SCSI_PASS_THROUGH, SenseInfoOffset) == 32 && offsetof(SCSI_PASS_THROUGH, Cdb) == 36);

static_assert(offsetof(STORAGE_PROPERTY_QUERY, AdditionalParameters) == 8);
static_assert(sizeof(STORAGE_PROTOCOL_SPECIFIC_DATA) == 40);

/// What a transport brought back.
struct ControllerData {
    std::array<std::uint8_t, kNvmeIdentifySize> identify{};
    std::array<std::uint8_t, kNvmeHealthLogSize> healthLog{};
};

/// Copies the data into its place; 1 when there is any.
template <std::size_t Size>
int keep(std::optional<ByteView> data, std::array<std::uint8_t, Size>& place) {
    if (!data || data->size() < Size) {
        return 0;
    }
    std::copy_n(data->begin(), Size, place.begin());
    return 1;
}

UniqueHandle openForRequests(const std::string& path) {
    return UniqueHandle{openDevice(path.c_str(), 0)};
}

UniqueHandle openPhysicalDrive(const DriveRecord& record) {
    return openForRequests(formatText(R"(\\.\PhysicalDrive%d)", record.driveNumber));
}

/// Sends a request in the buffer that also takes the reply. What comes back is a part of that buffer.
std::optional<ByteView> exchange(HANDLE device, std::uint32_t controlCode, std::span<std::uint8_t> buffer) {
    return requestFromDevice(device, controlCode, buffer, buffer);
}

// --- Storage query

int readIdentifyByStorageQuery(HANDLE device, ControllerData& data) {
    StorageQueryBuffer buffer = storageQueryIdentifyRequest();
    const auto reply = exchange(device, kIoctlStorageQueryProperty, buffer);
    return reply ? keep(storageQueryData(*reply, kNvmeIdentifySize), data.identify) : 0;
}

int readHealthByStorageQuery(HANDLE device, ControllerData& data) {
    StorageQueryBuffer buffer = storageQueryHealthRequest(0);
    auto reply = exchange(device, kIoctlStorageQueryProperty, buffer);
    if (!reply) {
        // Some drivers only have the log of all namespaces.
        buffer = storageQueryHealthRequest(kNvmeAllNamespaces);
        reply = exchange(device, kIoctlStorageQueryProperty, buffer);
    }
    return reply ? keep(storageQueryData(*reply, kNvmeHealthLogSize), data.healthLog) : 0;
}

int readByStorageQuery(DriveRecord& record) {
    ControllerData data;
    const UniqueHandle device = openPhysicalDrive(record);
    if (!device || !readIdentifyByStorageQuery(device.get(), data)) {
        return 0;
    }
    // Lists and reports go on showing what the system's descriptor told.
    record.printed = parseControllerIdentity(data.identify);
    if (!readHealthByStorageQuery(device.get(), data)) {
        return 0;
    }
    CopyHealthLog(record, data.healthLog);
    return 1;
}

/// A transport that hides an NVMe controller behind another bus: the texts that the probe found are not the
/// controller's.
int takeHiddenController(DriveRecord& record, const ControllerData& data, std::string_view busText) {
    copyControllerIdentity(record, data.identify);
    CopyHealthLog(record, data.healthLog);
    record.busText.assign(busText);
    record.busCode = kBusCodeOwnText;
    return 1;
}

// --- RAID driver

/// The adapter's device, and the controller's path on it.
struct RaidAdapter {
    UniqueHandle device;
    std::uint8_t pathId = 0;
};

RaidAdapter openRaidAdapter(const DriveRecord& record) {
    std::array<std::uint8_t, sizeof(SCSI_ADDRESS)> address{};
    const UniqueHandle drive = openPhysicalDrive(record);
    const auto reply = drive ? requestFromDevice(drive.get(), IOCTL_SCSI_GET_ADDRESS, {}, address) : std::nullopt;
    if (!reply || reply->size() < address.size()) {
        return {};
    }
    const int port = address[offsetof(SCSI_ADDRESS, PortNumber)];
    return {openForRequests(formatText(R"(\\.\Scsi%d:)", port)), address[offsetof(SCSI_ADDRESS, PathId)]};
}

template <std::size_t Size>
int readByRaidDriver(const RaidAdapter& adapter, const NvmeCommand& command, std::array<std::uint8_t, Size>& place) {
    RaidBuffer buffer = raidRequest(adapter.pathId, command);
    const auto reply = exchange(adapter.device.get(), kIoctlScsiMiniport, buffer);
    return reply ? keep(raidData(*reply, Size), place) : 0;
}

int readIdentifyByRaidDriver(const RaidAdapter& adapter, ControllerData& data) {
    // The namespace's data is asked for first; nothing of it is used.
    const bool identified = readByRaidDriver(adapter, kRaidIdentifyNamespace, data.identify) &&
                            readByRaidDriver(adapter, kRaidIdentifyController, data.identify);
    return identified && isRaidIdentifyData(data.identify) ? 1 : 0;
}

int readHealthByRaidDriver(const RaidAdapter& adapter, ControllerData& data) {
    return readByRaidDriver(adapter, kRaidGetHealthLog, data.healthLog) && isRaidHealthData(data.healthLog) ? 1 : 0;
}

int readByRaidDriver(DriveRecord& record) {
    ControllerData data;
    const RaidAdapter adapter = openRaidAdapter(record);
    if (!adapter.device || !readIdentifyByRaidDriver(adapter, data) || !readHealthByRaidDriver(adapter, data)) {
        return 0;
    }
    return takeHiddenController(record, data, "Intel RST NVME");
}

// --- USB bridge

class UsbBridge {
  public:
    explicit UsbBridge(const DriveRecord& record) : device_(openPhysicalDrive(record)) {}

    [[nodiscard]] bool isOpen() const { return static_cast<bool>(device_); }

    /// Sends the command in `block` and receives the data that it gives.
    template <std::size_t Size>
    int read(const BridgeBlock& block, std::array<std::uint8_t, Size>& place) {
        const auto sent = request([&](PassThroughLayout layout) { return bridgeSendRequest(layout, block); });
        if (!sent || !bridgeReplyIsGood(*sent)) {
            return 0;
        }
        const auto received = request([](PassThroughLayout layout) { return bridgeReceiveRequest(layout, Size); });
        return received ? keep(bridgeData(layout_, *received, Size), place) : 0;
    }

  private:
    template <typename Build>
    std::optional<ByteView> request(Build build) {
        buffer_ = build(layout_);
        auto reply = exchange(device_.get(), kIoctlScsiPassThrough, buffer_);
        if (!reply && layout_ == PassThroughLayout::kShort) {
            // A 64-bit system takes the short structure from 32-bit programs alone. With which error it refuses it is
            // each driver's own matter.
            layout_ = PassThroughLayout::kLong;
            buffer_ = build(layout_);
            reply = exchange(device_.get(), kIoctlScsiPassThrough, buffer_);
        }
        return reply;
    }

    UniqueHandle device_;
    PassThroughLayout layout_ = PassThroughLayout::kShort;
    std::vector<std::uint8_t> buffer_;
};

int readIdentifyByUsbBridge(UsbBridge& bridge, ControllerData& data) {
    return bridge.read(bridgeIdentifyBlock(), data.identify) && isBridgeIdentifyData(data.identify) ? 1 : 0;
}

int readHealthByUsbBridge(UsbBridge& bridge, ControllerData& data) {
    return bridge.read(bridgeHealthBlock(), data.healthLog) && isBridgeHealthData(data.healthLog) ? 1 : 0;
}

int readByUsbBridge(DriveRecord& record) {
    ControllerData data;
    UsbBridge bridge(record);
    if (!bridge.isOpen() || !readIdentifyByUsbBridge(bridge, data) || !readHealthByUsbBridge(bridge, data)) {
        return 0;
    }
    return takeHiddenController(record, data, "JMicron USB NVME");
}

int readByTransportsOf(DriveRecord& record) {
    switch (record.busCode) {
    case kBusCodeUsb:
        return readByUsbBridge(record);
    case kBusCodeDirect:
        return readByRaidDriver(record) || readByStorageQuery(record) ? 1 : 0;
    case kBusCodeNvme:
        return readByStorageQuery(record);
    default:
        return 0;
    }
}

} // namespace

int ReadNvmeHealth(DriveRecord& record) {
    markNvmeHealthUnread(record);
    if (!readByTransportsOf(record)) {
        return 0;
    }
    record.smartType = kSmartTypeNvme;
    return 1;
}

} // namespace torvane
