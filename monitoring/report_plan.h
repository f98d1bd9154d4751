#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace torvane {

/// A drive's report that may be made before its line's turn in the listing.
struct PlannedReport {
    int line;                 ///< of the listing, from 0
    std::int32_t driveNumber; ///< physical drive number
    std::string commandLine;
};

/// Of a listing of "smartctl --scan" the reports that may be made beside each other, in the listing's order: those of
/// lines that name a drive, each drive once. A line that names a drive again, or means the one of the line before it
/// (`readListedDevice`), has its report made in its turn.
[[nodiscard]] std::vector<PlannedReport> planReports(const char* listing);

} // namespace torvane
