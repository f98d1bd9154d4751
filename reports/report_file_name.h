#pragma once

#include "base/local_moment.h"

#include <string>
#include <string_view>

namespace torvane {

/// "Report%s.pdf" from a drive's serial number, of which at most the 127 bytes that a record holds are taken.
///
/// The name becomes part of a PowerShell command line, and the serial number is whatever the drive says: every
/// character that a file name cannot hold, or that means something to PowerShell, becomes '_'.
[[nodiscard]] std::string reportFileName(std::string_view serialNumber);

/// The name under which an older report is kept beside a new one of its name: "ReportX.pdf" of that day (local) becomes
/// "ReportX 2026-11-22.pdf", the second of the day "ReportX 2026-11-22 (2).pdf", and so on; `number` counts from 1.
[[nodiscard]] std::string olderReportFileName(std::string_view fileName, const LocalMoment& written, int number);

/// The command line that opens the report in whatever program the system opens PDF files with.
[[nodiscard]] std::string openReportCommand(std::string_view fileName);

} // namespace torvane
