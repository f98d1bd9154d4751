#include "monitoring/nvme_usb_bridge.h"

#include "discovery/nvme_command.h"

#include <algorithm>
#include <bit>
#include <numeric>
#include <span>

namespace torvane {
namespace {

static_assert(std::endian::native == std::endian::little, "requests are laid out in memory as they are sent");

// SCSI_PASS_THROUGH (Win32, ntddscsi.h), in the layouts of 32-bit and of 64-bit programs.
constexpr std::uint8_t kDataOut = 0;
constexpr std::uint8_t kDataIn = 1;
constexpr std::uint8_t kSenseLength = 24;
constexpr std::size_t kScsiStatusAt = 2;
using Cdb = std::array<std::uint8_t, 16>;
constexpr std::uint8_t kCdbLength = 12;

struct ShortPassThrough {
    std::uint16_t length = 44;
    std::uint8_t scsiStatus = 0;
    std::uint8_t pathId = 0;
    std::uint8_t targetId = 0;
    std::uint8_t lun = 0;
    std::uint8_t cdbLength = kCdbLength;
    std::uint8_t senseLength = kSenseLength;
    std::uint8_t direction = kDataOut;
    std::array<std::uint8_t, 3> alignment{};
    std::uint32_t dataLength = 0;
    std::uint32_t timeoutSeconds = 2;
    std::uint32_t dataOffset = 44 + kSenseLength;
    std::uint32_t senseOffset = 44;
    Cdb cdb{};
};
static_assert(sizeof(ShortPassThrough) == 44);
static_assert(offsetof(ShortPassThrough, scsiStatus) == kScsiStatusAt);
static_assert(ShortPassThrough{}.dataOffset == 68);

struct LongPassThrough {
    std::uint16_t length = 56;
    std::uint8_t scsiStatus = 0;
    std::uint8_t pathId = 0;
    std::uint8_t targetId = 0;
    std::uint8_t lun = 0;
    std::uint8_t cdbLength = kCdbLength;
    std::uint8_t senseLength = kSenseLength;
    std::uint8_t direction = kDataOut;
    std::array<std::uint8_t, 3> alignment{};
    std::uint32_t dataLength = 0;
    std::uint32_t timeoutSeconds = 2;
    std::uint32_t pointerAlignment = 0;
    std::uint64_t dataOffset = 56 + kSenseLength;
    std::uint32_t senseOffset = 56;
    Cdb cdb{};
    std::uint32_t tail = 0;
};
static_assert(sizeof(LongPassThrough) == 56);
static_assert(offsetof(LongPassThrough, scsiStatus) == kScsiStatusAt);
static_assert(offsetof(LongPassThrough, dataOffset) == 24);
static_assert(offsetof(LongPassThrough, cdb) == 36);

// The bridge's vendor command: byte 1 tells the direction, bytes 3 and 4 the count of data, 512.
constexpr Cdb kSendCdb{0xA1, 0x80, 0x00, 0x00, 0x02};
constexpr Cdb kReceiveCdb{0xA1, 0x82, 0x00, 0x00, 0x02};

template <typename Header>
std::vector<std::uint8_t> passThrough(std::uint8_t direction, const Cdb& cdb, std::size_t dataLength) {
    Header header;
    header.direction = direction;
    header.dataLength = static_cast<std::uint32_t>(dataLength);
    header.cdb = cdb;
    const auto bytes = std::bit_cast<std::array<std::uint8_t, sizeof(Header)>>(header);
    std::vector<std::uint8_t> buffer(bytes.begin(), bytes.end());
    buffer.resize(static_cast<std::size_t>(header.dataOffset) + dataLength);
    return buffer;
}

std::vector<std::uint8_t> passThrough(PassThroughLayout layout, std::uint8_t direction, const Cdb& cdb,
                                      std::size_t dataLength) {
    return layout == PassThroughLayout::kShort ? passThrough<ShortPassThrough>(direction, cdb, dataLength)
                                               : passThrough<LongPassThrough>(direction, cdb, dataLength);
}

std::size_t dataAt(PassThroughLayout layout) {
    return layout == PassThroughLayout::kShort ? ShortPassThrough{}.dataOffset
                                               : static_cast<std::size_t>(LongPassThrough{}.dataOffset);
}

// Where the NVMe command lies in the data block: its dwords follow the signature from byte 8 on.
constexpr std::size_t kOpcodeAt = 8;
constexpr std::size_t kNamespaceIdAt = 12;
constexpr std::size_t kDword10At = 48;

BridgeBlock blockWithSignature() {
    return BridgeBlock{'N', 'V', 'M', 'E'};
}

std::uint32_t sumOf(ByteView bytes) {
    return std::accumulate(bytes.begin(), bytes.end(), std::uint32_t{0});
}

ByteView firstBlock(ByteView data) {
    return data.first(std::min(data.size(), kBridgeBlockSize));
}

} // namespace

BridgeBlock bridgeIdentifyBlock() {
    BridgeBlock block = blockWithSignature();
    block[kOpcodeAt] = kNvmeOpcodeIdentify;
    storeLe<std::uint32_t>(block, kDword10At, kNvmeCnsController);
    return block;
}

BridgeBlock bridgeHealthBlock() {
    BridgeBlock block = blockWithSignature();
    block[kOpcodeAt] = kNvmeOpcodeGetLogPage;
    // The bridge wants these bytes as they are, although a controller gives them no meaning.
    block[10] = 0x56;
    block[33] = 0x40;
    block[34] = 0x7A;
    storeLe<std::uint32_t>(block, kNamespaceIdAt, kNvmeAllNamespaces);
    block[kDword10At] = kNvmeHealthLogId;
    block[kDword10At + 2] = 0x7F; // the last dword's number
    return block;
}

std::vector<std::uint8_t> bridgeSendRequest(PassThroughLayout layout, const BridgeBlock& block) {
    std::vector<std::uint8_t> request = passThrough(layout, kDataOut, kSendCdb, block.size());
    std::ranges::copy(block, request.end() - static_cast<std::ptrdiff_t>(block.size()));
    return request;
}

std::vector<std::uint8_t> bridgeReceiveRequest(PassThroughLayout layout, std::size_t length) {
    return passThrough(layout, kDataIn, kReceiveCdb, length);
}

bool bridgeReplyIsGood(ByteView reply) {
    return reply.size() > kScsiStatusAt && reply[kScsiStatusAt] == 0;
}

std::optional<ByteView> bridgeData(PassThroughLayout layout, ByteView reply, std::size_t length) {
    if (!bridgeReplyIsGood(reply) || reply.size() < dataAt(layout) + length) {
        return std::nullopt;
    }
    return reply.subspan(dataAt(layout), length);
}

bool isBridgeIdentifyData(ByteView data) {
    const std::uint32_t sum = sumOf(firstBlock(data));
    return sum != 0 && sum != sumOf(bridgeIdentifyBlock());
}

bool isBridgeHealthData(ByteView data) {
    return sumOf(firstBlock(data)) != 0;
}

} // namespace torvane
