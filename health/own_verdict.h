#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace torvane {

// What a drive says of itself in smartctl's report, beyond its counters. `report` may be empty.

/// True when the drive's own verdict (ATA SMART RETURN STATUS; SCSI informational exceptions) is that it is failing.
[[nodiscard]] bool saysThatItFails(std::string_view report);

/// True when the drive has no SMART feature set (IDENTIFY DEVICE, word 82 bit 0).
[[nodiscard]] bool hasNoSmart(std::string_view report);

/// How much of its rated life a solid-state drive has used, in percent, 0 to 255 (ATA Device Statistics, page 7, offset
/// 8); none when the report does not tell.
[[nodiscard]] std::optional<std::uint32_t> lifeUsed(std::string_view report);

} // namespace torvane
