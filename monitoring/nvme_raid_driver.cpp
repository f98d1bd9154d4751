#include "monitoring/nvme_raid_driver.h"

#include <algorithm>
#include <bit>

namespace torvane {
namespace {

static_assert(std::endian::native == std::endian::little, "requests are laid out in memory as they are sent");

/// SRB_IO_CONTROL (Win32, ntddscsi.h), the header of every private miniport request.
struct SrbIoControl {
    std::uint32_t headerLength = 28;
    std::array<char, 8> signature{'I', 'n', 't', 'e', 'l', 'N', 'v', 'm'};
    std::uint32_t timeoutSeconds = 10;
    std::uint32_t controlCode = 0xF0002808;
    std::uint32_t returnCode = 0;
    std::uint32_t length = kRaidRequestSize - 28; // what follows this header
};
static_assert(sizeof(SrbIoControl) == 28);

/// The driver's own parameters.
struct RaidRequest {
    SrbIoControl header;
    std::uint8_t version = 1;
    std::uint8_t pathId = 0;
    std::uint8_t targetId = 0;
    std::uint8_t lun = 0;
    std::array<std::uint32_t, 16> command{}; // an NVMe submission queue entry
    std::uint8_t isIoCommand = 0;
    std::array<std::uint8_t, 3> alignment{};
    std::array<std::uint32_t, 4> completion{}; // an NVMe completion queue entry
    std::uint32_t dataOffset = 164;
    std::uint32_t dataLength = kNvmeIdentifySize;
    std::array<std::uint32_t, 10> reserved{};
    std::array<std::uint8_t, kNvmeIdentifySize> data{};
};
static_assert(sizeof(RaidRequest) == kRaidRequestSize);
static_assert(offsetof(RaidRequest, command) == 32);
static_assert(offsetof(RaidRequest, completion) == 100);
constexpr std::size_t kDataAt = offsetof(RaidRequest, data);
static_assert(kDataAt == RaidRequest{}.dataOffset);

} // namespace

RaidBuffer raidRequest(std::uint8_t pathId, const NvmeCommand& command) {
    RaidRequest request;
    request.pathId = pathId;
    request.command[0] = command.opcode;
    request.command[1] = command.namespaceId;
    request.command[10] = command.dword10;
    return std::bit_cast<RaidBuffer>(request);
}

std::optional<ByteView> raidData(ByteView reply, std::size_t length) {
    const std::uint32_t returnCode = loadLe32(reply, offsetof(RaidRequest, header.returnCode));
    if (returnCode != 0 || reply.size() < kDataAt + length) {
        return std::nullopt;
    }
    return reply.subspan(kDataAt, length);
}

bool isRaidIdentifyData(ByteView data) {
    // Identify Controller data: the model number in bytes 24 to 63, padded with blanks.
    constexpr std::size_t kModelAt = 24;
    constexpr std::size_t kModelBytes = 40;
    const ByteView model = data.subspan(std::min(kModelAt, data.size()));
    return std::ranges::any_of(model.first(std::min(kModelBytes, model.size())),
                               [](std::uint8_t byte) { return byte != 0 && byte != ' '; });
}

bool isRaidHealthData(ByteView data) {
    return std::ranges::any_of(data, [](std::uint8_t byte) { return byte != 0; });
}

} // namespace torvane
