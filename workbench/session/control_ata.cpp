#include "base/bytes.h"
#include "workbench/description/error_names.h"
#include "workbench/session/control_parts.h"

#include <windows.h>

#include <winioctl.h>

#include <ntddscsi.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>

namespace torvane::bench {
namespace {

// SENDCMDINPARAMS: buffer size, the eight IDE registers, drive number, reserved. SENDCMDOUTPARAMS: buffer size, driver
// status of 12 bytes, then the data.
constexpr std::size_t kSendHeader = 32;
constexpr std::size_t kOutHeader = 16;
static_assert(offsetof(SENDCMDINPARAMS, irDriveRegs) == 4 && offsetof(SENDCMDINPARAMS, bBuffer) == kSendHeader);
static_assert(offsetof(SENDCMDOUTPARAMS, bBuffer) == kOutHeader);

constexpr std::size_t kPassThroughHeader = 48; // ATA_PASS_THROUGH_EX
static_assert(sizeof(ATA_PASS_THROUGH_EX) == kPassThroughHeader);
static_assert(offsetof(ATA_PASS_THROUGH_EX, DataTransferLength) == 8);
static_assert(offsetof(ATA_PASS_THROUGH_EX, DataBufferOffset) == 24);
static_assert(offsetof(ATA_PASS_THROUGH_EX, PreviousTaskFile) == 32);
static_assert(offsetof(ATA_PASS_THROUGH_EX, CurrentTaskFile) == 40);

// IDEREGS and the task files of ATA_PASS_THROUGH_EX: features, count, address low, mid, high, device, command.
AtaCommand commandOfRegisters(ByteView registers) {
    AtaCommand command;
    command.features = registers[0];
    command.count = registers[1];
    command.lba = registers[2] | (std::uint64_t{registers[3]} << 8) | (std::uint64_t{registers[4]} << 16);
    command.device = registers[5];
    command.command = registers[6];
    return command;
}

void addPrevious(AtaCommand& command, ByteView registers) {
    command.features = static_cast<std::uint16_t>(command.features | (registers[0] << 8));
    command.count = static_cast<std::uint16_t>(command.count | (registers[1] << 8));
    command.lba |=
        (std::uint64_t{registers[2]} << 24) | (std::uint64_t{registers[3]} << 32) | (std::uint64_t{registers[4]} << 40);
}

// After the command: error, count, address low, mid, high, device, status.
void storeRegisters(std::span<std::uint8_t> registers, const AtaReply& reply) {
    registers[0] = reply.error;
    registers[1] = static_cast<std::uint8_t>(reply.count);
    for (std::size_t i = 0; i < 3; ++i) {
        registers[2 + i] = static_cast<std::uint8_t>(reply.lba >> (8 * i));
    }
    registers[5] = reply.device;
    registers[6] = reply.status;
}

// The command goes to the device unless a fault takes it.
std::optional<AtaReply> sendToDevice(BenchDrive& drive, const AtaCommand& command, LogLine& line, DWORD& error) {
    const std::string name = ataCommandName(command);
    line.word("command", name);
    if (const std::optional<DWORD> fault = drive.requestFault(name)) {
        error = *fault;
        return std::nullopt;
    }
    return drive.ata().execute(command);
}

} // namespace

ControlResult smartVersion(BenchDrive& drive, const ControlRequest& request) {
    if (!drive.description().roads.ata) {
        return {kErrorInvalidFunction, 0};
    }
    // GETVERSIONINPARAMS: version, revision, reserved, device map (bit 0: one ATA device), capabilities.
    std::array<std::uint8_t, 24> version{};
    static_assert(sizeof(GETVERSIONINPARAMS) == version.size());
    version[0] = 1;
    version[1] = 1;
    version[3] = 1;
    storeLe<std::uint32_t>(version, 4, CAP_ATA_ID_CMD | CAP_SMART_CMD);
    return giveWhole(request, version);
}

ControlResult smartCommand(BenchDrive& drive, const ControlRequest& request, LogLine& line) {
    line.hex("data", requestBytes(request, kSendHeader));
    if (!drive.description().roads.ata) {
        return {kErrorInvalidFunction, 0};
    }
    // A caller may leave out the structure's one data byte.
    if (request.in.size() < kSendHeader || request.out.size() < kOutHeader) {
        return {kErrorInvalidParameter, 0};
    }
    const AtaCommand command = commandOfRegisters(ByteView(request.in).subspan(4, 8));
    const bool receives = request.code == SMART_RCV_DRIVE_DATA;
    if (command.command != kAtaSmart && (!receives || command.command != kAtaIdentifyDevice)) {
        return {kErrorInvalidParameter, 0}; // these requests carry nothing else
    }
    DWORD error = 0;
    const std::optional<AtaReply> reply = sendToDevice(drive, command, line, error);
    if (!reply || reply->failed()) {
        return {reply ? kErrorIoDevice : error, 0};
    }
    constexpr std::size_t kRegisters = 8;
    std::vector<std::uint8_t> answer(kOutHeader + (receives ? reply->data.size() : kRegisters));
    const std::span content = std::span(answer).subspan(kOutHeader);
    if (receives) {
        std::ranges::copy(reply->data, content.begin());
    } else {
        storeRegisters(content, *reply);
    }
    storeLe<std::uint32_t>(answer, 0, static_cast<std::uint32_t>(answer.size() - kOutHeader));
    return giveWhole(request, answer);
}

ControlResult ataPassThrough(BenchDrive& drive, const ControlRequest& request, LogLine& line) {
    line.hex("data", requestBytes(request, kPassThroughHeader));
    if (!drive.description().roads.ata) {
        return {kErrorInvalidFunction, 0};
    }
    const std::uint32_t length = loadLe32(request.in, 8);
    const std::uint64_t dataAt = loadLe64(request.in, 24);
    const bool dataIn = (loadLe16(request.in, 2) & ATA_FLAGS_DATA_IN) != 0;
    if (request.in.size() < kPassThroughHeader || loadLe16(request.in, 0) != kPassThroughHeader ||
        request.out.size() < kPassThroughHeader) {
        return {kErrorInvalidParameter, 0};
    }
    if (dataIn &&
        (dataAt < kPassThroughHeader || dataAt > request.out.size() || length > request.out.size() - dataAt)) {
        return {kErrorInvalidParameter, 0};
    }
    AtaCommand command = commandOfRegisters(ByteView(request.in).subspan(40, 8));
    if ((loadLe16(request.in, 2) & ATA_FLAGS_48BIT_COMMAND) != 0) {
        addPrevious(command, ByteView(request.in).subspan(32, 8));
    }
    DWORD error = 0;
    const std::optional<AtaReply> reply = sendToDevice(drive, command, line, error);
    if (!reply) {
        return {error, 0};
    }
    // An aborted command is a success of the request: the registers tell of it.
    std::copy_n(request.in.begin(), kPassThroughHeader, request.out.begin());
    storeRegisters(request.out.subspan(40, 8), *reply);
    const std::size_t count = dataIn ? std::min<std::size_t>(length, reply->data.size()) : 0;
    storeLe<std::uint32_t>(request.out, 8, static_cast<std::uint32_t>(count));
    if (count == 0) {
        return {0, static_cast<DWORD>(kPassThroughHeader)};
    }
    const std::span<std::uint8_t> data = request.out.subspan(static_cast<std::size_t>(dataAt), count);
    std::copy_n(reply->data.begin(), count, data.begin());
    return {0, static_cast<DWORD>(dataAt + count)};
}

} // namespace torvane::bench
