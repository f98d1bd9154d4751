#include "base/bytes.h"
#include "workbench/description/error_names.h"
#include "workbench/devices/nvme_device.h"
#include "workbench/devices/storage_property.h"
#include "workbench/session/control_parts.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace torvane::bench {
namespace {

// STORAGE_PROPERTY_QUERY: property id, query type, then what belongs to the property. <winioctl.h>
constexpr std::size_t kQueryMinimum = 8;
constexpr std::uint32_t kStandardQuery = 0;
constexpr std::uint32_t kExistsQuery = 1;
constexpr std::uint32_t kDeviceProperty = 0;
constexpr std::uint32_t kAdapterProperty = 1;
constexpr std::uint32_t kAdapterProtocolProperty = 49;
constexpr std::uint32_t kDeviceProtocolProperty = 50;

// STORAGE_PROTOCOL_SPECIFIC_DATA, in the request behind the 8 query bytes and in the answer behind version and size.
constexpr std::size_t kSpecificAt = 8;
constexpr std::size_t kSpecificLength = 40;
constexpr std::uint32_t kProtocolNvme = 3;
constexpr std::uint32_t kDataIdentify = 1;
constexpr std::uint32_t kDataLogPage = 2;

std::string_view propertyName(std::uint32_t id) {
    switch (id) {
    case kDeviceProperty:
        return "StorageDeviceProperty";
    case kAdapterProperty:
        return "StorageAdapterProperty";
    case kAdapterProtocolProperty:
        return "StorageAdapterProtocolSpecificProperty";
    case kDeviceProtocolProperty:
        return "StorageDeviceProtocolSpecificProperty";
    default:
        return {};
    }
}

struct SpecificRequest {
    std::uint32_t protocol;
    std::uint32_t dataType;
    std::uint32_t value;
    std::uint32_t subValue;
    std::uint32_t offset; ///< of the data, from the start of this record
    std::uint32_t length;
};

SpecificRequest specificRequest(const ControlRequest& request) {
    const auto field = [&](std::size_t index) { return loadLe32(request.in, kSpecificAt + 4 * index); };
    return {field(0), field(1), field(2), field(3), field(4), field(5)};
}

// The NVMe command that the Windows driver makes of the request; opcode 0 for what it does not know.
NvmeCommand nvmeCommandOf(const DriveDescription& drive, const SpecificRequest& specific) {
    NvmeCommand command;
    command.dword10 = specific.value;
    if (specific.dataType == kDataIdentify) {
        command.opcode = kNvmeIdentify;
        command.namespaceId = specific.value == 0 ? 1 : 0;
    } else if (specific.dataType == kDataLogPage) {
        const bool allOnly = drive.nvme.healthOnlyForAllNamespaces && specific.subValue != kNvmeAllNamespaces;
        command.opcode = allOnly ? std::uint8_t{0} : kNvmeGetLogPage;
        command.namespaceId = kNvmeAllNamespaces;
    }
    return command;
}

ControlResult protocolData(BenchDrive& drive, const ControlRequest& request, LogLine& line) {
    if (!drive.description().roads.nvmeQuery) {
        return {kErrorInvalidFunction, 0};
    }
    const SpecificRequest specific = specificRequest(request);
    if (request.in.size() < kSpecificAt + kSpecificLength || specific.protocol != kProtocolNvme ||
        specific.offset < kSpecificLength ||
        std::uint64_t{kSpecificAt} + specific.offset + specific.length > request.out.size()) {
        return {kErrorInvalidParameter, 0};
    }
    const NvmeCommand command = nvmeCommandOf(drive.description(), specific);
    line.word("command", nvmeCommandName(command.opcode))
        .hex("data", requestBytes(request, kSpecificAt + kSpecificLength));
    const auto data = executeNvme(drive.description(), command, specific.length);
    if (!data) {
        return {kErrorIoDevice, 0};
    }
    // STORAGE_PROTOCOL_DATA_DESCRIPTOR: version and size, then the request's record, then the data.
    std::fill(request.out.begin(), request.out.end(), std::uint8_t{0});
    storeLe<std::uint32_t>(request.out, 0, static_cast<std::uint32_t>(kSpecificAt + kSpecificLength));
    storeLe<std::uint32_t>(request.out, 4, static_cast<std::uint32_t>(kSpecificAt + kSpecificLength));
    std::copy_n(request.in.begin() + kSpecificAt, kSpecificLength, request.out.begin() + kSpecificAt);
    const std::size_t dataAt = kSpecificAt + specific.offset;
    std::copy(data->begin(), data->end(), request.out.begin() + static_cast<std::ptrdiff_t>(dataAt));
    return {0, static_cast<DWORD>(dataAt + data->size())};
}

} // namespace

ControlResult queryProperty(BenchDrive& drive, const ControlRequest& request, LogLine& line) {
    const std::uint32_t property = loadLe32(request.in, 0);
    const std::uint32_t queryType = loadLe32(request.in, 4);
    const std::string_view name = propertyName(property);
    line.word("property", name.empty() ? std::to_string(property) : std::string(name));
    if (request.in.size() < kQueryMinimum) {
        return {kErrorInvalidParameter, 0};
    }
    if (name.empty() || queryType > kExistsQuery) {
        return {kErrorInvalidFunction, 0};
    }
    if (const std::optional<DWORD> error = drive.requestFault(name)) {
        return {*error, 0};
    }
    if (queryType != kStandardQuery) {
        return {0, 0};
    }
    if (property == kDeviceProperty) {
        return giveAsMuchAsFits(request, deviceDescriptor(drive.description()));
    }
    if (property == kAdapterProperty) {
        return giveAsMuchAsFits(request, adapterDescriptor(drive.description()));
    }
    return protocolData(drive, request, line);
}

} // namespace torvane::bench
