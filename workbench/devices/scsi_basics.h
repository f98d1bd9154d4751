#pragma once

#include "workbench/devices/scsi_device.h"

namespace torvane::bench {

/// Sense keys and additional sense codes (SCSI Primary Commands).
inline constexpr std::uint8_t kSenseRecovered = 0x01;
inline constexpr std::uint8_t kSenseNotReady = 0x02;
inline constexpr std::uint8_t kSenseIllegalRequest = 0x05;
inline constexpr std::uint8_t kSenseAborted = 0x0B;
inline constexpr std::uint8_t kInvalidOperationCode = 0x20;
inline constexpr std::uint8_t kInvalidFieldInCdb = 0x24;
inline constexpr std::uint8_t kMediumNotPresent = 0x3A;

/// CHECK CONDITION with fixed-format sense data.
[[nodiscard]] ScsiReply checkCondition(std::uint8_t key, std::uint8_t asc, std::uint8_t ascq);

/// INQUIRY, TEST UNIT READY, REQUEST SENSE, MODE SENSE, READ CAPACITY, REPORT LUNS; ILLEGAL REQUEST for all others.
[[nodiscard]] ScsiReply executeBasic(const DriveDescription& drive, std::span<const std::uint8_t> cdb);

/// Big-endian, as SCSI has its numbers.
void storeBe(std::span<std::uint8_t> bytes, std::size_t offset, std::size_t width, std::uint64_t value);

} // namespace torvane::bench
