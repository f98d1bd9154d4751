#include "details/health_page.h"

#include "base/format.h"
#include "details/meanings.h"
#include "details/nvme_log.h"
#include "details/page_rows.h"
#include "health/grading.h"
#include "records/counters.h"
#include "records/drive_record.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {

namespace {

std::string_view verdictMeaning(std::string_view verdict) {
    if (verdict.starts_with("PASSED") || verdict.starts_with("OK")) {
        return "no limit of its own was reached; bad sectors alone do not change this";
    }
    return verdict.find("FAIL") != std::string_view::npos
               ? "the drive itself says that it is failing: save its data first"
               : "no verdict that the tool understands";
}

std::string_view whyNoReport(const DriveRecord& drive) {
    if (drive.smartType == kSmartTypeNone) {
        return "the drive did not let its monitoring data be read";
    }
    return drive.smartText.empty() ? "smartctl.exe left no report of this drive at the last scan"
                                   : "the report tells no verdict";
}

void addVerdict(const DriveRecord& drive, const ToolReport& report, PageRows& rows) {
    rows.heading("Verdict");
    if (report.verdict.empty() && !drive.nvmeLog.empty()) {
        rows.add("The drive's own verdict", drive.nvmeLog.front() == 0 ? "no warning" : "WARNING",
                 "the critical warning of its health log");
    } else if (report.verdict.empty()) {
        rows.add("The drive's own verdict", "none", whyNoReport(drive));
    } else {
        rows.add("The drive's own verdict", report.verdict, verdictMeaning(report.verdict));
    }
    for (const std::string& failure : report.failures) {
        rows.add("Not read", failure);
    }
}

struct NamedCounter {
    Counter counter;
    const char* name;
    const char* meaning;
};

constexpr auto kCounters = std::to_array<NamedCounter>({
    {Counter::kPowerOnHours, "Power-on hours", "how long the drive has been on"},
    {Counter::kReallocatedSectors, "Reallocated sectors", "bad sectors that were replaced by spare ones"},
    {Counter::kReallocationEvents, "Reallocation events", "how often the drive has tried to replace sectors"},
    {Counter::kPendingSectors, "Pending sectors", "sectors that could not be read and wait to be replaced"},
    {Counter::kReportedUncorrectable, "Reported uncorrectable", "reads that failed for good"},
    {Counter::kOfflineUncorrectable, "Offline uncorrectable", "sectors that the drive's own scan could not read"},
});
static_assert(namesEachCounterOnce(kCounters), "each counter needs its row in the details");

std::string counterText(Counter counter, std::int32_t value) {
    constexpr double kHoursPerYear = 24 * 365.25;
    const std::string number = thousandsText(static_cast<std::uint64_t>(value));
    return counter == Counter::kPowerOnHours ? number + formatText(" (%.1f years)", value / kHoursPerYear) : number;
}

/// The counters that are graded, in numbers.
void addCounters(const DriveRecord& drive, PageRows& rows) {
    rows.heading("Counters that the drive is graded by");
    const Counters counters = toldCounters(drive);
    for (const NamedCounter& row : kCounters) {
        const std::int32_t value = counters[row.counter];
        rows.addIfTold(row.name, value < 0 ? std::string() : counterText(row.counter, value), row.meaning);
    }
}

/// As the tool printed it; else as the scan read it from the drive, because the tool is no help with most NVMe drives.
void addNvme(const DriveRecord& drive, const ToolReport& report, PageRows& rows) {
    rows.heading("NVMe health log");
    for (const ReportField& field : report.nvmeHealth.empty() ? nvmeLogFields(drive.nvmeLog) : report.nvmeHealth) {
        rows.add(field.name, field.value, nvmeMeaning(field.name));
    }
}

void addFields(std::string_view heading, const std::vector<ReportField>& fields, PageRows& rows) {
    rows.heading(heading);
    for (const ReportField& field : fields) {
        rows.add(field.name, field.value, scsiMeaning(field.name));
    }
}

bool isTemperature(std::string_view name) {
    return name.find("Temperature_Cel") != std::string_view::npos || name == "Drive_Temperature" ||
           name == "Temperature_Internal" || name == "Temperature_Case";
}

void addTemperatures(const ToolReport& report, PageRows& rows) {
    addFields("Temperature", report.temperatures, rows);
    for (const SmartAttribute& attribute : report.attributes) {
        if (isTemperature(attribute.name)) {
            rows.add("Attribute " + attribute.id + " " + attribute.name, attribute.raw, "degrees Celsius");
        }
    }
    for (const Statistic& statistic : report.statistics) {
        // They repeat what an SCT status tells.
        if (report.temperatures.empty() && statistic.group == "Temperature Statistics" && statistic.value != "-" &&
            statistic.name.find("Average") == std::string::npos) {
            rows.add(statistic.name, statistic.value, statisticMeaning(statistic.name));
        }
    }
}

/// Life of a solid-state device as the standard's own counter has it.
void addWear(const ToolReport& report, PageRows& rows) {
    rows.heading("Wear");
    for (const Statistic& statistic : report.statistics) {
        if (statistic.name == "Percentage Used Endurance Indicator") {
            rows.addIfTold(statistic.name, statistic.value == "-" ? "" : statistic.value + "%",
                           "of its rated life; may exceed 100 %");
        }
    }
}

} // namespace

DetailPage healthPage(const DriveRecord& drive, const ToolReport& report) {
    DetailPage page;
    PageRows rows(page, "Health");
    addVerdict(drive, report, rows);
    addCounters(drive, rows);
    addWear(report, rows);
    addNvme(drive, report, rows);
    addFields("What the drive counts", report.scsiHealth, rows);
    addTemperatures(report, rows);
    return page;
}

} // namespace torvane
