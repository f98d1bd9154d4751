#include "workbench/devices/nvme_device.h"

#include "base/bytes.h"

#include <algorithm>
#include <bit>
#include <span>
#include <string_view>

namespace torvane::bench {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kIdentifyLength = 4096;
constexpr std::size_t kHealthLength = 512;
constexpr std::uint32_t kCnsNamespace = 0;
constexpr std::uint32_t kCnsController = 1;

// ASCII, padded with blanks, no terminator.
void setText(Bytes& bytes, std::size_t offset, std::size_t width, std::string_view text) {
    for (std::size_t i = 0; i < width; ++i) {
        bytes[offset + i] = static_cast<std::uint8_t>(i < text.size() ? text[i] : ' ');
    }
}

Bytes identifyController(const DriveDescription& drive) {
    Bytes bytes(kIdentifyLength);
    setText(bytes, 4, 20, drive.nvme.serial);
    setText(bytes, 24, 40, drive.nvme.model);
    setText(bytes, 64, 8, drive.nvme.firmware);
    storeLe<std::uint16_t>(bytes, 78, 1);           // controller id
    storeLe<std::uint32_t>(bytes, 80, 0x00010300);  // version 1.3
    storeLe<std::uint16_t>(bytes, 266, 353);        // warning temperature, kelvin
    storeLe<std::uint16_t>(bytes, 268, 358);        // critical temperature, kelvin
    storeLe<std::uint64_t>(bytes, 280, drive.size); // total capacity
    bytes[512] = 0x66;                              // submission queue entries of 64 bytes
    bytes[513] = 0x44;                              // completion queue entries of 16 bytes
    storeLe<std::uint32_t>(bytes, 516, 1);          // namespaces
    return bytes;
}

Bytes identifyNamespace(const DriveDescription& drive) {
    Bytes bytes(kIdentifyLength);
    for (const std::size_t offset : {std::size_t{0}, std::size_t{8}, std::size_t{16}}) { // size, capacity, used
        storeLe<std::uint64_t>(bytes, offset, drive.nvme.namespaceSectors);
    }
    bytes[130] = static_cast<std::uint8_t>(std::countr_zero(drive.sectorSize)); // LBA format 0, data size
    return bytes;
}

Bytes healthLog(const NvmeHealthDescription& health) {
    Bytes bytes(kHealthLength);
    bytes[0] = health.criticalWarning;
    storeLe<std::uint16_t>(bytes, 1, health.temperature);
    bytes[3] = health.availableSpare;
    bytes[4] = health.availableSpareThreshold;
    bytes[5] = health.percentageUsed;
    // 128-bit counters; their upper halves stay zero.
    storeLe<std::uint64_t>(bytes, 32, health.dataUnitsRead);
    storeLe<std::uint64_t>(bytes, 48, health.dataUnitsWritten);
    storeLe<std::uint64_t>(bytes, 64, health.hostReads);
    storeLe<std::uint64_t>(bytes, 80, health.hostWrites);
    storeLe<std::uint64_t>(bytes, 96, health.controllerBusyMinutes);
    storeLe<std::uint64_t>(bytes, 112, health.powerCycles);
    storeLe<std::uint64_t>(bytes, 128, health.powerOnHours);
    storeLe<std::uint64_t>(bytes, 144, health.unsafeShutdowns);
    storeLe<std::uint64_t>(bytes, 160, health.mediaErrors);
    storeLe<std::uint64_t>(bytes, 176, health.errorLogEntries);
    return bytes;
}

std::optional<Bytes> answer(const DriveDescription& drive, const NvmeCommand& command) {
    if (command.opcode == kNvmeIdentify && !drive.nvme.identifyFails) {
        const std::uint32_t cns = command.dword10 & 0xFF;
        if (cns == kCnsController) {
            return identifyController(drive);
        }
        if (cns == kCnsNamespace && command.namespaceId == 1) {
            return identifyNamespace(drive);
        }
    }
    if (command.opcode == kNvmeGetLogPage && (command.dword10 & 0xFF) == kNvmeHealthLog && !drive.nvme.healthFails) {
        return healthLog(drive.nvme.health);
    }
    return std::nullopt;
}

} // namespace

std::optional<std::vector<std::uint8_t>> executeNvme(const DriveDescription& drive, const NvmeCommand& command,
                                                     std::size_t length) {
    std::optional<Bytes> data = answer(drive, command);
    if (data && data->size() > length) {
        data->resize(length);
    }
    return data;
}

std::string nvmeCommandName(std::uint8_t opcode) {
    if (opcode == kNvmeIdentify) {
        return "NVME_IDENTIFY";
    }
    if (opcode == kNvmeGetLogPage) {
        return "NVME_GET_LOG_PAGE";
    }
    static constexpr std::string_view kDigits = "0123456789abcdef";
    return std::string("nvme:0x") + kDigits[opcode >> 4U] + kDigits[opcode & 0x0FU];
}

} // namespace torvane::bench
