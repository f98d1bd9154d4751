#pragma once

#include <cstdint>
#include <string>

namespace torvane::bench {

/// Values of the SMART / Health Information log (NVMe Base Specification, log page 02h).
struct NvmeHealthDescription {
    std::uint8_t criticalWarning = 0;
    std::uint16_t temperature = 310; ///< kelvin
    std::uint8_t availableSpare = 100;
    std::uint8_t availableSpareThreshold = 10;
    std::uint8_t percentageUsed = 0;
    std::uint64_t dataUnitsRead = 0;
    std::uint64_t dataUnitsWritten = 0;
    std::uint64_t hostReads = 0;
    std::uint64_t hostWrites = 0;
    std::uint64_t controllerBusyMinutes = 0;
    std::uint64_t powerCycles = 0;
    std::uint64_t powerOnHours = 0;
    std::uint64_t unsafeShutdowns = 0;
    std::uint64_t mediaErrors = 0;
    std::uint64_t errorLogEntries = 0;
};

struct NvmeDescription {
    std::string model;
    std::string serial;
    std::string firmware;
    std::uint64_t namespaceSectors = 0;
    bool identifyFails = false;
    bool healthFails = false;
    bool healthOnlyForAllNamespaces = false;
    bool bridgeEchoes = false;
    NvmeHealthDescription health;
};

} // namespace torvane::bench
