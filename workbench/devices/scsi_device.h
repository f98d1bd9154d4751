#pragma once

#include "workbench/devices/ata_device.h"

#include <cstdint>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace torvane::bench {

inline constexpr std::uint8_t kScsiGood = 0x00;
inline constexpr std::uint8_t kScsiCheckCondition = 0x02;

struct ScsiReply {
    std::uint8_t status = kScsiGood;
    std::vector<std::uint8_t> data;  ///< what the device sends back
    std::vector<std::uint8_t> sense; ///< with CHECK CONDITION
    std::string commandName;         ///< for the log; that of the ATA or NVMe command inside, if there is one
};

/// The SCSI side of a drive: the basic commands of a direct-access device, ATA PASS-THROUGH (12) and (16) where the
/// drive translates (SCSI/ATA Translation), and the vendor command of a USB bridge to NVMe.
class ScsiDevice {
  public:
    ScsiDevice(const DriveDescription& drive, AtaDevice& ata) : drive_(drive), ata_(ata) {}

    /// `cdb`: 6 to 16 bytes. `dataOut`: what the host sends along. `allocation`: bytes that the host has room for.
    [[nodiscard]] ScsiReply execute(std::span<const std::uint8_t> cdb, std::span<const std::uint8_t> dataOut,
                                    std::size_t allocation);

  private:
    [[nodiscard]] ScsiReply ataPassThrough(std::span<const std::uint8_t> cdb);
    [[nodiscard]] ScsiReply bridgeCommand(std::span<const std::uint8_t> cdb, std::span<const std::uint8_t> dataOut,
                                          std::size_t allocation);

    const DriveDescription& drive_;
    AtaDevice& ata_;
    std::mutex bridgeMutex_;
    std::vector<std::uint8_t> bridgeBlock_; ///< the NVMe command that the bridge was sent last
};

/// The ATA command inside an ATA PASS-THROUGH CDB.
[[nodiscard]] AtaCommand ataCommandOfCdb(std::span<const std::uint8_t> cdb);

} // namespace torvane::bench
