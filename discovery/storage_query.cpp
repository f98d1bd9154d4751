#include "discovery/storage_query.h"

#include "discovery/device_request.h"

#include <windows.h>

#include <winioctl.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace torvane {

namespace {

// STORAGE_PROPERTY_QUERY: property id, query type, and its padded first byte of additional parameters.
constexpr std::size_t kDeviceQueryBytes = 12;
constexpr std::size_t kDeviceDescriptorBytes = 551;
constexpr std::size_t kAdapterQueryBytes = 29;
constexpr std::size_t kAdapterDescriptorBytes = 540;
// The second word of every storage descriptor is its size.
constexpr std::size_t kDescriptorSizeOffset = 4;

/// `query` and `answer` are zero-filled; the query type stays PropertyStandardQuery.
std::optional<ByteView> queryProperty(NativeHandle device, STORAGE_PROPERTY_ID property, std::span<std::uint8_t> query,
                                      std::span<std::uint8_t> answer) {
    storeLe(query, 0, static_cast<std::uint32_t>(property));
    storeLe(answer, kDescriptorSizeOffset, static_cast<std::uint32_t>(answer.size()));
    return requestFromDevice(device, IOCTL_STORAGE_QUERY_PROPERTY, query, answer);
}

} // namespace

std::optional<StorageDeviceTexts> readStorageDevice(NativeHandle device) {
    std::array<std::uint8_t, kDeviceQueryBytes> query{};
    std::array<std::uint8_t, kDeviceDescriptorBytes> answer{};
    const auto descriptor = queryProperty(device, StorageDeviceProperty, query, answer);
    return descriptor ? std::optional(parseStorageDeviceDescriptor(*descriptor)) : std::nullopt;
}

std::optional<BusVersion> readBusVersion(NativeHandle device) {
    std::array<std::uint8_t, kAdapterQueryBytes> query{};
    std::array<std::uint8_t, kAdapterDescriptorBytes> answer{};
    const auto descriptor = queryProperty(device, StorageAdapterProperty, query, answer);
    return descriptor ? std::optional(parseStorageAdapterDescriptor(*descriptor)) : std::nullopt;
}

} // namespace torvane
