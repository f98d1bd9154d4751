#include "workbench/devices/ata_device.h"

#include "workbench/devices/ata_logs.h"
#include "workbench/devices/ata_smart.h"
#include "workbench/devices/pattern.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace torvane::bench {
namespace {

constexpr std::uint8_t kAbort = 0x04;
constexpr std::uint16_t kActiveOrIdle = 0xFF; // CHECK POWER MODE

AtaReply aborted(const AtaCommand& command) {
    AtaReply reply;
    reply.status = 0x51;
    reply.error = kAbort;
    reply.count = command.count;
    reply.lba = command.lba;
    reply.device = command.device;
    return reply;
}

AtaReply done(const AtaCommand& command) {
    AtaReply reply;
    reply.lba = command.lba;
    reply.device = command.device;
    return reply;
}

AtaReply withBlock(const AtaCommand& command, const AtaBlock& block) {
    AtaReply reply = done(command);
    reply.data.assign(block.begin(), block.end());
    return reply;
}

// `count` pages of a log from page `first` on; pages past its end cannot be read.
AtaReply withPages(const AtaCommand& command, const std::vector<std::uint8_t>& pages, std::size_t first,
                   std::size_t count) {
    const std::size_t held = pages.size() / kAtaBlock;
    if (count == 0 || first >= held || count > held - first) {
        return aborted(command);
    }
    AtaReply reply = done(command);
    const auto begin = pages.begin() + static_cast<std::ptrdiff_t>(first * kAtaBlock);
    reply.data.assign(begin, begin + static_cast<std::ptrdiff_t>(count * kAtaBlock));
    return reply;
}

} // namespace

AtaDevice::AtaDevice(const DriveDescription& drive) : drive_(drive), smartEnabled_(drive.ata.smart.enabled) {}

AtaReply AtaDevice::execute(const AtaCommand& command) {
    return drive_.ata.garbage == 0 ? answer(command) : garbage(command);
}

AtaReply AtaDevice::answer(const AtaCommand& command) {
    switch (command.command) {
    case kAtaIdentifyDevice:
        return identify(command);
    case kAtaSmart:
        return smart(command);
    case kAtaReadLogExt:
        return readLogExt(command);
    case kAtaCheckPowerMode: {
        AtaReply reply = done(command);
        reply.count = kActiveOrIdle;
        return reply;
    }
    default:
        return aborted(command);
    }
}

AtaReply AtaDevice::garbage(const AtaCommand& command) {
    const AtaReply sound = answer(command);
    Backing noise;
    noise.kind = BackingKind::kNoise;
    noise.seed =
        splitMix(drive_.ata.garbage + (command.lba << 24U) + (std::uint64_t{command.features} << 8U) + command.command);
    AtaReply reply;
    reply.data.resize(sound.failed() ? std::size_t{command.count} * kAtaBlock : sound.data.size());
    fillPattern(noise, 0, reply.data);
    reply.count = static_cast<std::uint16_t>(noise.seed);
    reply.lba = noise.seed >> 16U;
    reply.device = static_cast<std::uint8_t>(noise.seed >> 8U);
    return reply;
}

AtaReply AtaDevice::identify(const AtaCommand& command) const {
    if (drive_.ata.identifyFails) {
        return aborted(command);
    }
    return withBlock(command, identifyBlock(drive_, smartEnabled_));
}

AtaReply AtaDevice::smart(const AtaCommand& command) {
    const SmartDescription& smart = drive_.ata.smart;
    const auto subcommand = static_cast<std::uint8_t>(command.features);
    if (!smart.supported || (command.lba & 0xFFFF00) != kSmartSignature) {
        return aborted(command);
    }
    if (subcommand == kSmartEnable) {
        smartEnabled_ = true;
        return done(command);
    }
    if (!smartEnabled_) {
        return aborted(command);
    }
    switch (subcommand) {
    case kSmartReadData:
        return smart.readDataFails ? aborted(command) : withBlock(command, smartDataBlock(smart));
    case kSmartReadThresholds:
        return smart.readDataFails ? aborted(command) : withBlock(command, smartThresholdsBlock(smart));
    case kSmartReadLog:
        return smartLog(command);
    case kSmartReturnStatus: {
        AtaReply reply = done(command);
        reply.lba = (command.lba & ~std::uint64_t{0xFFFF00}) | (smart.healthPassed ? kSmartSignature : kSmartFailing);
        return reply;
    }
    case kSmartDisable:
        smartEnabled_ = false;
        return done(command);
    case kSmartAutosave:
    case kSmartAutoOffline:
    case kSmartExecuteOffline:
        return done(command);
    default:
        return aborted(command);
    }
}

AtaReply AtaDevice::smartLog(const AtaCommand& command) const {
    const auto address = static_cast<std::uint8_t>(command.lba);
    const auto pages = drive_.ata.smart.logs ? smartLogPages(drive_.ata.smart, address) : std::nullopt;
    return pages ? withPages(command, *pages, 0, command.count & 0xFFU) : aborted(command);
}

AtaReply AtaDevice::readLogExt(const AtaCommand& command) const {
    // LBA bits 7:0 are the log's address; bits 15:8 and 39:32 the first page.
    const auto address = static_cast<std::uint8_t>(command.lba);
    const std::size_t first = ((command.lba >> 8) & 0xFFU) | (((command.lba >> 32) & 0xFFU) << 8);
    const bool served = drive_.ata.smart.supported && drive_.ata.smart.logs;
    const auto pages = served ? generalLogPages(drive_.ata.smart, address) : std::nullopt;
    return pages ? withPages(command, *pages, first, command.count) : aborted(command);
}

std::string ataCommandName(const AtaCommand& command) {
    static constexpr std::array<std::pair<std::uint8_t, std::string_view>, 9> kSmartNames = {{
        {kSmartReadData, "SMART_READ_DATA"},
        {kSmartReadThresholds, "SMART_READ_THRESHOLDS"},
        {kSmartAutosave, "SMART_AUTOSAVE"},
        {kSmartExecuteOffline, "SMART_EXECUTE_OFFLINE"},
        {kSmartReadLog, "SMART_READ_LOG"},
        {kSmartEnable, "SMART_ENABLE"},
        {kSmartDisable, "SMART_DISABLE"},
        {kSmartReturnStatus, "SMART_RETURN_STATUS"},
        {kSmartAutoOffline, "SMART_AUTO_OFFLINE"},
    }};
    if (command.command == kAtaSmart) {
        const auto subcommand = static_cast<std::uint8_t>(command.features);
        const auto found = std::find_if(kSmartNames.begin(), kSmartNames.end(),
                                        [&](const auto& named) { return named.first == subcommand; });
        return found == kSmartNames.end() ? "SMART" : std::string(found->second);
    }
    switch (command.command) {
    case kAtaIdentifyDevice:
        return "IDENTIFY_DEVICE";
    case kAtaReadLogExt:
        return "READ_LOG_EXT";
    case kAtaCheckPowerMode:
        return "CHECK_POWER_MODE";
    default:
        break;
    }
    static constexpr std::string_view kDigits = "0123456789abcdef";
    return std::string("ata:0x") + kDigits[command.command >> 4U] + kDigits[command.command & 0x0FU];
}

} // namespace torvane::bench
