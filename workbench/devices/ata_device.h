#pragma once

#include "workbench/description/drive_description.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace torvane::bench {

/// ATA commands that the device knows (ATA/ATAPI Command Set).
inline constexpr std::uint8_t kAtaReadLogExt = 0x2F;
inline constexpr std::uint8_t kAtaSmart = 0xB0;
inline constexpr std::uint8_t kAtaCheckPowerMode = 0xE5;
inline constexpr std::uint8_t kAtaIdentifyDevice = 0xEC;

/// SMART subcommands, in the features register.
inline constexpr std::uint8_t kSmartReadData = 0xD0;
inline constexpr std::uint8_t kSmartReadThresholds = 0xD1;
inline constexpr std::uint8_t kSmartAutosave = 0xD2;
inline constexpr std::uint8_t kSmartExecuteOffline = 0xD4;
inline constexpr std::uint8_t kSmartReadLog = 0xD5;
inline constexpr std::uint8_t kSmartEnable = 0xD8;
inline constexpr std::uint8_t kSmartDisable = 0xD9;
inline constexpr std::uint8_t kSmartReturnStatus = 0xDA;
inline constexpr std::uint8_t kSmartAutoOffline = 0xDB;

/// LBA mid and high of every SMART command; RETURN STATUS changes them when a threshold is exceeded.
inline constexpr std::uint64_t kSmartSignature = 0xC24F00;
inline constexpr std::uint64_t kSmartFailing = 0x2CF400;

/// The registers of one command; 28-bit commands leave the upper halves zero.
struct AtaCommand {
    std::uint16_t features = 0;
    std::uint16_t count = 0;
    std::uint64_t lba = 0; ///< 48 bits
    std::uint8_t device = 0;
    std::uint8_t command = 0;
};

struct AtaReply {
    std::uint8_t status = 0x50; ///< DRDY, DSC; bit 0 is ERR
    std::uint8_t error = 0;
    std::uint16_t count = 0;
    std::uint64_t lba = 0;
    std::uint8_t device = 0;
    std::vector<std::uint8_t> data; ///< whole 512-byte blocks

    [[nodiscard]] bool failed() const { return (status & 0x01) != 0; }
};

/// A simulated ATA device: everything that its description says, by the commands that ask for it.
class AtaDevice {
  public:
    explicit AtaDevice(const DriveDescription& drive);

    /// Commands that the device does not know, and those that its description makes fail, are aborted (ABRT). A device
    /// described as garbage carries out every command and answers with noise, the same for the same command.
    [[nodiscard]] AtaReply execute(const AtaCommand& command);

  private:
    [[nodiscard]] AtaReply answer(const AtaCommand& command);
    [[nodiscard]] AtaReply garbage(const AtaCommand& command);
    [[nodiscard]] AtaReply identify(const AtaCommand& command) const;
    [[nodiscard]] AtaReply smart(const AtaCommand& command);
    [[nodiscard]] AtaReply smartLog(const AtaCommand& command) const;
    [[nodiscard]] AtaReply readLogExt(const AtaCommand& command) const;

    const DriveDescription& drive_;
    std::atomic<bool> smartEnabled_;
};

/// "IDENTIFY_DEVICE", "SMART_READ_DATA", ...: how the log names a command; "ata:0x.." when it has no name here.
[[nodiscard]] std::string ataCommandName(const AtaCommand& command);

} // namespace torvane::bench
