#include "discovery/nvme_storage_query.h"

#include "discovery/nvme_command.h"

#include <bit>

namespace torvane {
namespace {

static_assert(std::endian::native == std::endian::little, "requests are laid out in memory as they are sent");

/// STORAGE_PROPERTY_QUERY with STORAGE_PROTOCOL_SPECIFIC_DATA as its parameters; in the reply the first two words are
/// the version and size of STORAGE_PROTOCOL_DATA_DESCRIPTOR.
struct StorageQuery {
    std::uint32_t propertyId = 49;  // StorageAdapterProtocolSpecificProperty
    std::uint32_t queryType = 0;    // PropertyStandardQuery
    std::uint32_t protocolType = 3; // ProtocolTypeNvme
    std::uint32_t dataType = 0;
    std::uint32_t requestValue = 0;
    std::uint32_t requestSubValue = 0;
    std::uint32_t dataOffset = 40; // from `protocolType` on
    std::uint32_t dataLength = kNvmeIdentifySize;
    std::uint32_t fixedReturnData = 0;
    std::array<std::uint32_t, 3> reserved{};
    std::array<std::uint8_t, kNvmeIdentifySize> data{};
};
static_assert(sizeof(StorageQuery) == kStorageQuerySize);
constexpr std::size_t kDataAt = offsetof(StorageQuery, data);
static_assert(kDataAt == offsetof(StorageQuery, protocolType) + StorageQuery{}.dataOffset);

constexpr std::uint32_t kDataTypeIdentify = 1; // NVMeDataTypeIdentify
constexpr std::uint32_t kDataTypeLogPage = 2;  // NVMeDataTypeLogPage

} // namespace

StorageQueryBuffer storageQueryIdentifyRequest() {
    StorageQuery query;
    query.dataType = kDataTypeIdentify;
    query.requestValue = kNvmeCnsController;
    return std::bit_cast<StorageQueryBuffer>(query);
}

StorageQueryBuffer storageQueryHealthRequest(std::uint32_t namespaceId) {
    StorageQuery query;
    query.dataType = kDataTypeLogPage;
    query.requestValue = kNvmeHealthLogId;
    query.requestSubValue = namespaceId;
    return std::bit_cast<StorageQueryBuffer>(query);
}

std::optional<ByteView> storageQueryData(ByteView reply, std::size_t length) {
    if (reply.size() < kDataAt + length) {
        return std::nullopt;
    }
    return reply.subspan(kDataAt, length);
}

} // namespace torvane
