#include "base/bytes.h"
#include "workbench/description/error_names.h"
#include "workbench/devices/nvme_device.h"
#include "workbench/session/control_parts.h"

#include <windows.h>

#include <winioctl.h>

#include <ntddscsi.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace torvane::bench {
namespace {

// Where the fields of SCSI_PASS_THROUGH and SCSI_PASS_THROUGH_DIRECT lie. The first 24 bytes are common to programs of
// 32 and of 64 bits; what follows depends on the width of a pointer.
struct PassThroughLayout {
    std::size_t header; ///< the structure's length, as its own Length field tells it
    std::size_t pointerWidth;
    std::size_t dataAt; ///< data buffer: an offset from the structure's start, or an address
    std::size_t senseOffsetAt;
    std::size_t cdbAt;
};
constexpr PassThroughLayout kLayout64 = {56, 8, 24, 32, 36};
constexpr PassThroughLayout kLayout32 = {44, 4, 20, 24, 28};
constexpr std::size_t kDirectionAt = 8;
constexpr std::size_t kDataLengthAt = 12;
constexpr std::size_t kLongestCdb = 16;
static_assert(sizeof(SCSI_PASS_THROUGH) == kLayout64.header && sizeof(SCSI_PASS_THROUGH_DIRECT) == kLayout64.header);
static_assert(offsetof(SCSI_PASS_THROUGH, DataIn) == kDirectionAt);
static_assert(offsetof(SCSI_PASS_THROUGH, DataTransferLength) == kDataLengthAt);
static_assert(offsetof(SCSI_PASS_THROUGH, DataBufferOffset) == kLayout64.dataAt);
static_assert(offsetof(SCSI_PASS_THROUGH, SenseInfoOffset) == kLayout64.senseOffsetAt);
static_assert(offsetof(SCSI_PASS_THROUGH, Cdb) == kLayout64.cdbAt);
static_assert(offsetof(SCSI_PASS_THROUGH_DIRECT, DataBuffer) == kLayout64.dataAt);
static_assert(offsetof(SCSI_PASS_THROUGH_DIRECT, SenseInfoOffset) == kLayout64.senseOffsetAt);
static_assert(offsetof(SCSI_PASS_THROUGH_DIRECT, Cdb) == kLayout64.cdbAt);

// One pass-through request, its fields checked against its buffers.
struct PassThrough {
    const PassThroughLayout* layout = nullptr;
    bool direct = false;
    std::uint8_t direction = 0;
    std::uint32_t dataLength = 0;
    std::uint64_t dataPlace = 0;
    std::uint32_t senseOffset = 0;
    std::uint8_t senseLength = 0;
    ByteView cdb;
};

// `shortToo`: take the layout of 32-bit programs as well. Windows answers a 64-bit program that sends it with
// ERROR_REVISION_MISMATCH.
const PassThroughLayout* layoutOf(const ControlRequest& request, bool shortToo) {
    const std::size_t length = loadLe16(request.in, 0);
    if (length == kLayout64.header && request.in.size() >= kLayout64.header) {
        return &kLayout64;
    }
    if (shortToo && length == kLayout32.header && request.in.size() >= kLayout32.header) {
        return &kLayout32;
    }
    return nullptr;
}

bool liesWithin(std::uint64_t offset, std::uint64_t length, std::uint64_t size) {
    return offset <= size && length <= size - offset;
}

DWORD parsePassThrough(const ControlRequest& request, bool direct, bool strict, PassThrough& parsed) {
    parsed.layout = layoutOf(request, !direct && !strict); // an address of 32 bits would be of no use here
    if (parsed.layout == nullptr) {
        return request.in.size() < kLayout32.header ? kErrorInvalidParameter : kErrorRevisionMismatch;
    }
    const PassThroughLayout& layout = *parsed.layout;
    const std::size_t cdbLength = request.in[6];
    parsed.direct = direct;
    parsed.senseLength = request.in[7];
    parsed.direction = request.in[kDirectionAt];
    parsed.dataLength = loadLe32(request.in, kDataLengthAt);
    parsed.dataPlace =
        layout.pointerWidth == 8 ? loadLe64(request.in, layout.dataAt) : loadLe32(request.in, layout.dataAt);
    parsed.senseOffset = loadLe32(request.in, layout.senseOffsetAt);
    if (cdbLength == 0 || cdbLength > kLongestCdb || request.out.size() < layout.header) {
        return kErrorInvalidParameter;
    }
    parsed.cdb = ByteView(request.in).subspan(layout.cdbAt, cdbLength);
    if (parsed.senseLength > 0 && (parsed.senseOffset < layout.header ||
                                   !liesWithin(parsed.senseOffset, parsed.senseLength, request.out.size()))) {
        return kErrorInvalidParameter;
    }
    if (parsed.dataLength == 0) {
        return 0;
    }
    if (direct) {
        return parsed.dataPlace == 0 ? kErrorInvalidParameter : 0;
    }
    const std::size_t room = parsed.direction == SCSI_IOCTL_DATA_OUT ? request.in.size() : request.out.size();
    const bool placed = parsed.dataPlace >= layout.header && liesWithin(parsed.dataPlace, parsed.dataLength, room);
    return placed ? 0 : kErrorInvalidParameter;
}

std::uint8_t* directBuffer(const PassThrough& parsed) {
    std::uint8_t* buffer = nullptr;
    std::memcpy(&buffer, &parsed.dataPlace, sizeof(buffer));
    return buffer;
}

ByteView dataOutOf(const ControlRequest& request, const PassThrough& parsed) {
    if (parsed.direction != SCSI_IOCTL_DATA_OUT || parsed.dataLength == 0) {
        return {};
    }
    if (parsed.direct) {
        return {directBuffer(parsed), parsed.dataLength};
    }
    return ByteView(request.in).subspan(static_cast<std::size_t>(parsed.dataPlace), parsed.dataLength);
}

// Fills in the answer; the request's own structure comes back with status and lengths changed.
ControlResult answerPassThrough(const ControlRequest& request, const PassThrough& parsed, const ScsiReply& reply) {
    const PassThroughLayout& layout = *parsed.layout;
    std::copy_n(request.in.begin(), layout.header, request.out.begin());
    request.out[2] = reply.status;
    const std::size_t senseCount = std::min<std::size_t>(reply.sense.size(), parsed.senseLength);
    request.out[7] = static_cast<std::uint8_t>(senseCount);
    std::size_t end = layout.header;
    if (senseCount > 0) {
        std::copy_n(reply.sense.begin(), senseCount,
                    request.out.begin() + static_cast<std::ptrdiff_t>(parsed.senseOffset));
        end = std::max(end, parsed.senseOffset + senseCount);
    }
    std::size_t dataCount = 0;
    if (parsed.direction == SCSI_IOCTL_DATA_IN) {
        dataCount = std::min<std::size_t>(reply.data.size(), parsed.dataLength);
        if (parsed.direct) {
            std::copy_n(reply.data.begin(), dataCount, directBuffer(parsed));
        } else if (dataCount > 0) {
            std::copy_n(reply.data.begin(), dataCount,
                        request.out.begin() + static_cast<std::ptrdiff_t>(parsed.dataPlace));
            end = std::max(end, static_cast<std::size_t>(parsed.dataPlace) + dataCount);
        }
        storeLe<std::uint32_t>(request.out, kDataLengthAt, static_cast<std::uint32_t>(dataCount));
    }
    return {0, static_cast<DWORD>(end)};
}

// --- the miniport request of the RAID driver ----------------------------------------------------------------------

// SRB_IO_CONTROL (28 bytes), then the driver's own record: version, path id, target id, lun, the NVMe command's sixteen
// dwords, and further on where the data buffer lies.
constexpr std::size_t kSrbHeader = 28;
static_assert(sizeof(SRB_IO_CONTROL) == kSrbHeader);
constexpr std::string_view kRaidSignature = "IntelNvm";
constexpr std::uint32_t kRaidControlCode = 0xF0002808;
constexpr std::size_t kNvmeCommandAt = kSrbHeader + 4;
constexpr std::size_t kReturnCodeAt = 20;
constexpr std::size_t kRaidDataAt = 164;
constexpr std::size_t kRaidHeader = kRaidDataAt;

} // namespace

ControlResult scsiPassThrough(BenchDrive& drive, const ControlRequest& request, bool direct, LogLine& line) {
    line.hex("data", requestBytes(request, kLayout64.header));
    if (!drive.description().roads.anyScsi()) {
        return {kErrorInvalidFunction, 0};
    }
    PassThrough parsed;
    if (const DWORD error = parsePassThrough(request, direct, drive.description().strictPassThrough, parsed);
        error != 0) {
        return {error, 0};
    }
    if (parsed.dataLength > drive.description().adapter.maximumTransfer) {
        return {kErrorInvalidParameter, 0};
    }
    const ScsiReply reply = drive.scsi().execute(parsed.cdb, dataOutOf(request, parsed), parsed.dataLength);
    line.word("command", reply.commandName);
    if (const std::optional<DWORD> error = drive.requestFault(reply.commandName)) {
        return {*error, 0};
    }
    line.number("status", reply.status);
    return answerPassThrough(request, parsed, reply);
}

ControlResult scsiAddress(BenchDrive& drive, const ControlRequest& request) {
    // SCSI_ADDRESS: length, port number, path, target, lun.
    std::array<std::uint8_t, 8> address{};
    static_assert(sizeof(SCSI_ADDRESS) == address.size());
    storeLe<std::uint32_t>(address, 0, static_cast<std::uint32_t>(address.size()));
    address[4] = static_cast<std::uint8_t>(drive.description().scsiPort);
    return giveWhole(request, address);
}

ControlResult scsiMiniport(BenchDrive& drive, const ControlRequest& request, LogLine& line) {
    line.hex("data", requestBytes(request, kRaidHeader));
    if (drive.description().miniportIgnores) {
        return giveAsMuchAsFits(request, request.in); // one buffer for both: as it was sent
    }
    const std::string_view signature(reinterpret_cast<const char*>(request.in.data()) + 4,
                                     request.in.size() < kSrbHeader ? 0 : kRaidSignature.size());
    if (!drive.description().roads.raidMiniport || signature != kRaidSignature ||
        loadLe32(request.in, 16) != kRaidControlCode) {
        return {kErrorInvalidFunction, 0};
    }
    if (request.in.size() < kRaidHeader || request.out.size() < kRaidHeader) {
        return {kErrorInvalidParameter, 0};
    }
    const NvmeCommand command{static_cast<std::uint8_t>(loadLe32(request.in, kNvmeCommandAt)),
                              loadLe32(request.in, kNvmeCommandAt + 4), loadLe32(request.in, kNvmeCommandAt + 40)};
    line.word("command", nvmeCommandName(command.opcode));
    std::copy_n(request.in.begin(), kRaidHeader, request.out.begin());
    const auto data = executeNvme(drive.description(), command, request.out.size() - kRaidDataAt);
    if (!data) {
        storeLe<std::uint32_t>(request.out, kReturnCodeAt, 1);
        return {kErrorIoDevice, 0};
    }
    storeLe<std::uint32_t>(request.out, kReturnCodeAt, 0);
    std::copy(data->begin(), data->end(), request.out.begin() + kRaidDataAt);
    return {0, static_cast<DWORD>(kRaidDataAt + data->size())};
}

} // namespace torvane::bench
