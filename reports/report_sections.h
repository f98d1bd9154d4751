#pragma once

#include "records/read_test_result.h"
#include "reports/report_icons.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace torvane {

struct DriveRecord;

/// One finding of a report: a title, then two lines about the value, or one word when the drive does not report it.
struct ReportSection {
    std::string title;
    std::string explanation;    ///< or the word for a value that is not reported
    std::string recommendation; ///< empty for a value that is not reported
    std::optional<ReportIcon> icon;
};

/// From top to bottom of the page.
using ReportSections = std::vector<ReportSection>;

/// What the ATA SMART attributes tell.
[[nodiscard]] ReportSections ataSections(const DriveRecord& drive);

/// What the NVMe SMART / Health Information log tells.
[[nodiscard]] ReportSections nvmeSections(const DriveRecord& drive);

/// `out` becomes the line that tells of a read test's result.
void FormatTestResult(std::string& out, const char* testName, ReadTestResult result);

} // namespace torvane
