#pragma once

#include "records/counters.h"

#include <cstdint>

namespace torvane {

/// Grade of one section of a report.
enum class ReportIcon { kGreen, kBlue, kYellow, kRed };

/// The icon's picture, a PNG file of 32 x 32 pixels beside the program.
[[nodiscard]] const char* reportIconFile(ReportIcon icon);

// The grade of each value that a drive reports. Values that are not reported have no icon: do not ask for them.

[[nodiscard]] ReportIcon counterIcon(Counter counter, std::int32_t value);
/// Units of 2^30 bytes.
[[nodiscard]] ReportIcon dataWrittenIcon(std::int64_t gigabytes);
/// Percent.
[[nodiscard]] ReportIcon availableSpareIcon(std::int32_t spare, std::int32_t threshold);
[[nodiscard]] ReportIcon warningFlagIcon(bool set);

} // namespace torvane
