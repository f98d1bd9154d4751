#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace torvane {

struct DriveRecord;

/// What kind of monitoring data a drive offers. Kept as a 32-bit code, since a record may hold a value outside the
/// list.
enum SmartType : std::int32_t {
    kSmartTypeStandard = 1000, ///< ATA SMART attributes
    kSmartTypeSsd = 1001,      ///< ATA SMART attributes of a solid-state device
    kSmartTypeNvme = 1002,     ///< NVMe SMART / Health Information log
    kSmartTypeUnknown = 1003,
    kSmartTypeNone = 1004, ///< the drive's SMART read failed
};

/// "STANDARD SMART TYPE" ... "SMART TYPE NONE"; "INVALID SMART TYPE" for any other code.
[[nodiscard]] std::string_view smartTypeText(std::int32_t smartType);

/// Clears `out`, then writes the text of the record's SmartType into it, NUL-terminated and cut at its size.
/// Returns 1.
int SmartTypeText(const DriveRecord& record, std::span<char> out);

} // namespace torvane
