#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace torvane::bench {

/// ATA words 128 and 82/85: what the security feature set says.
enum class AtaSecurity { kUnsupported, kDisabled, kEnabled, kLocked, kFrozen };

/// Nominal form factor, ATA word 168.
enum class FormFactor : std::uint16_t { kNotReported = 0, kInch35 = 2, kInch25 = 3, kInch18 = 4, kM2 = 7 };

struct SmartAttribute {
    std::uint8_t id = 0;
    std::uint16_t flags = 50;
    std::uint8_t value = 100;
    std::uint8_t worst = 100;
    std::uint8_t threshold = 0;
    std::array<std::uint8_t, 6> raw{}; ///< little-endian
};

/// One entry of the drive's error log: the failed command and its ending status.
struct AtaErrorEntry {
    std::uint64_t lba = 0;
    std::uint16_t hours = 0;   ///< power-on hours when it happened
    std::uint8_t status = 81;  ///< DRDY, DSC, ERR
    std::uint8_t error = 64;   ///< UNC
    std::uint8_t command = 96; ///< READ FPDMA QUEUED
    std::uint16_t sectors = 8;
};

struct AtaSelfTestEntry {
    std::uint8_t test = 1;   ///< 1 short, 2 extended
    std::uint8_t status = 0; ///< high nibble result, low nibble remaining tenths
    std::uint16_t hours = 0;
    std::uint64_t lba = 0xFFFFFFFFFFFFULL; ///< all ones: none
};

struct SmartDescription {
    bool supported = true;
    bool enabled = true;
    bool readDataFails = false;
    bool healthPassed = true;
    std::uint8_t selfTestStatus = 0;
    bool logs = true;
    std::vector<SmartAttribute> attributes;
    std::vector<AtaErrorEntry> errorLog;       ///< oldest first
    std::vector<AtaSelfTestEntry> selfTestLog; ///< oldest first
};

struct AtaDescription {
    std::string model;
    std::string serial;
    std::string firmware;
    std::uint16_t rotationRate = 7200; ///< ATA word 217: 1 is a solid-state device, 0 not reported
    FormFactor formFactor = FormFactor::kNotReported;
    std::uint64_t wwn = 0; ///< 0: not reported
    AtaSecurity security = AtaSecurity::kDisabled;
    bool identifyFails = false;
    std::uint64_t garbage = 0; ///< not 0: a seed; every answer is noise
    SmartDescription smart;
};

} // namespace torvane::bench
