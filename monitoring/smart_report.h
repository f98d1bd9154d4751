#pragma once

#include "records/drive_record.h"

#include <cstdint>
#include <string>
#include <vector>

namespace torvane {

// The parser of smartctl's extended report ("smartctl -x"), over the text that a record keeps in `smartText`.
// An attribute's line has the columns ID, name, flags, value, worst, threshold, when failed, raw value; only the raw
// value, word 7 counted from 0, is used.

/// Stands in the report of a drive that refused to give its SMART data.
inline constexpr const char* kSmartReadFailed = "Read SMART Data failed";

/// Values of `DriveRecord::smartErrorFlag`.
inline constexpr std::int32_t kSmartErrorsFound = 1;
inline constexpr std::int32_t kSmartNoErrors = 2;

/// An error counter that the report gives with a value other than zero.
struct AttributeFinding {
    std::int32_t value = 0;
    const char* attribute = ""; ///< the attribute's name in the event log
};

/// Fills model, serial number, power-on hours, security, error counters, error-log LBAs and, for a solid-state device,
/// SmartType and bus text. A counter without its attribute becomes -1. What is found non-zero is appended to
/// `findings`.
///
/// Returns 1; 0 when the report tells of a failed SMART read: then `smartLoaded` becomes 0, SmartType "none", and
/// nothing else changes.
int parseSmartReport(DriveRecord& record, std::vector<AttributeFinding>& findings);

/// The serial number that a report gives; empty when it gives none.
[[nodiscard]] std::string reportedSerialNumber(const char* reportText);

/// 1 when the report's rotation rate reads "Solid State Device", else 0.
int SmartIsSolidStateDevice(const DriveRecord& record);

/// The pass for solid-state devices: fills `record.ssd`, and sets SmartType and bus text.
/// Returns 1; 0 with the record unchanged when the report is not that of a solid-state device.
int SmartParseSsdCounters(DriveRecord& record);

} // namespace torvane
