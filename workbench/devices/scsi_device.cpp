#include "workbench/devices/scsi_device.h"

#include "base/bytes.h"
#include "workbench/devices/nvme_device.h"
#include "workbench/devices/scsi_basics.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace torvane::bench {
namespace {

constexpr std::uint8_t kAtaPassThrough12 = 0xA1;
constexpr std::uint8_t kAtaPassThrough16 = 0x85;
constexpr std::uint8_t kBridgeCommand = 0xA1; // the bridge's vendor command has the same operation code
constexpr std::uint8_t kBridgeSend = 0x80;
constexpr std::uint8_t kBridgeReceive = 0x82;

// SCSI/ATA Translation: descriptor-format sense data with the ATA Status Return descriptor.
std::vector<std::uint8_t> ataReturnSense(const AtaReply& reply, bool extended) {
    std::vector<std::uint8_t> sense(22);
    sense[0] = 0x72;
    sense[1] = reply.failed() ? kSenseAborted : kSenseRecovered;
    sense[3] = 0x1D; // ATA pass-through information available
    sense[7] = 14;
    sense[8] = 0x09;
    sense[9] = 12;
    sense[10] = extended ? 1 : 0;
    sense[11] = reply.error;
    storeBe(sense, 12, 2, reply.count);
    // Each pair: previous content, then current content of the low, mid and high registers.
    for (std::size_t i = 0; i < 3; ++i) {
        sense[14 + 2 * i] = static_cast<std::uint8_t>(reply.lba >> (24 + 8 * i));
        sense[15 + 2 * i] = static_cast<std::uint8_t>(reply.lba >> (8 * i));
    }
    sense[20] = reply.device;
    sense[21] = reply.status;
    return sense;
}

ScsiReply illegalField() {
    return checkCondition(kSenseIllegalRequest, kInvalidFieldInCdb, 0);
}

} // namespace

AtaCommand ataCommandOfCdb(std::span<const std::uint8_t> cdb) {
    AtaCommand command;
    if (cdb[0] == kAtaPassThrough12) {
        command.features = cdb[3];
        command.count = cdb[4];
        command.lba = cdb[5] | (std::uint64_t{cdb[6]} << 8) | (std::uint64_t{cdb[7]} << 16);
        command.device = cdb[8];
        command.command = cdb[9];
        return command;
    }
    const auto word = [&](std::size_t high) { return static_cast<std::uint16_t>((cdb[high] << 8) | cdb[high + 1]); };
    command.features = word(3);
    command.count = word(5);
    for (std::size_t i = 0; i < 3; ++i) {
        command.lba |= std::uint64_t{cdb[8 + 2 * i]} << (8 * i);
        command.lba |= std::uint64_t{cdb[7 + 2 * i]} << (24 + 8 * i);
    }
    if ((cdb[1] & 0x01) == 0) { // a 28-bit command: the upper halves are reserved
        command.features &= 0xFF;
        command.count &= 0xFF;
        command.lba &= 0xFFFFFF;
    }
    command.device = cdb[13];
    command.command = cdb[14];
    return command;
}

ScsiReply ScsiDevice::execute(std::span<const std::uint8_t> cdb, std::span<const std::uint8_t> dataOut,
                              std::size_t allocation) {
    // Shorter than its operation code asks for: the missing bytes are zero.
    std::array<std::uint8_t, 16> whole{};
    std::copy_n(cdb.begin(), std::min(cdb.size(), whole.size()), whole.begin());
    if (drive_.roads.usbBridge && whole[0] == kBridgeCommand) {
        return bridgeCommand(whole, dataOut, allocation);
    }
    if (drive_.roads.translatesAta() && (whole[0] == kAtaPassThrough12 || whole[0] == kAtaPassThrough16)) {
        return ataPassThrough(whole);
    }
    return executeBasic(drive_, whole);
}

ScsiReply ScsiDevice::ataPassThrough(std::span<const std::uint8_t> cdb) {
    const AtaCommand command = ataCommandOfCdb(cdb);
    const bool wantsRegisters = (cdb[2] & 0x20) != 0; // CK_COND
    const bool extended = cdb[0] == kAtaPassThrough16 && (cdb[1] & 0x01) != 0;
    const AtaReply ata = ata_.execute(command);
    ScsiReply reply;
    reply.commandName = ataCommandName(command);
    reply.data = ata.data;
    if (ata.failed() || wantsRegisters) {
        reply.status = kScsiCheckCondition;
        reply.sense = ataReturnSense(ata, extended);
    }
    return reply;
}

// The host sends a block with the NVMe command, then fetches its data.
ScsiReply ScsiDevice::bridgeCommand(std::span<const std::uint8_t> cdb, std::span<const std::uint8_t> dataOut,
                                    std::size_t allocation) {
    const std::lock_guard lock(bridgeMutex_);
    ScsiReply reply;
    if (cdb[1] == kBridgeSend) {
        const std::string_view signature = "NVME";
        if (dataOut.size() < 512 || !std::equal(signature.begin(), signature.end(), dataOut.begin())) {
            return illegalField();
        }
        bridgeBlock_.assign(dataOut.begin(), dataOut.end());
        reply.commandName = nvmeCommandName(bridgeBlock_[8]);
        return reply;
    }
    if (cdb[1] != kBridgeReceive || bridgeBlock_.empty()) {
        return illegalField();
    }
    if (drive_.nvme.bridgeEchoes) {
        reply.data = bridgeBlock_;
    } else {
        const NvmeCommand command{bridgeBlock_[8], loadLe32(bridgeBlock_, 12), loadLe32(bridgeBlock_, 48)};
        std::optional<std::vector<std::uint8_t>> data = executeNvme(drive_, command, allocation);
        if (!data) {
            return illegalField();
        }
        reply.data = std::move(*data);
    }
    reply.commandName = nvmeCommandName(bridgeBlock_[8]);
    reply.data.resize(allocation); // what the bridge does not fill reads as zero
    return reply;
}

} // namespace torvane::bench
