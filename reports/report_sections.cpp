#include "reports/report_sections.h"

#include "base/format.h"
#include "health/counter_levels.h"
#include "records/drive_record.h"

#include <array>
#include <cinttypes>

namespace torvane {

namespace {

// Every misspelling and odd blank in these texts is kept: reports are compared with those already filed.

// NVMe Base Specification, SMART / Health Information log, byte 0: Critical Warning.
enum CriticalWarning : std::uint8_t {
    kSpareBelowThreshold = 0x01,
    kTemperatureOutside = 0x02,
    kReliabilityDegraded = 0x04,
    kReadOnlyMode = 0x08,
    kBackupFailed = 0x10,
    kWarningUnknown = 0xFF, ///< also what -1, "not read", keeps in one byte
};

ReportSection withoutValue(const char* title, const char* word) {
    return {title, word, {}, std::nullopt};
}

ReportSection absent(const char* title) {
    return withoutValue(title, "ABSENT");
}

ReportSection unknown(const char* title) {
    return withoutValue(title, "UNKNOWN");
}

/// What a report says of a counter.
struct CounterText {
    Counter counter;
    const char* title;
    std::string (*explain)(std::int32_t value);
    const char* recommendation;
};

/// From top to bottom.
constexpr auto kCounterTexts = std::to_array<CounterText>({
    {Counter::kPowerOnHours, "Power On  Hours",
     [](std::int32_t hours) {
         return formatText("09 = The number of Powered On Hours this device has been in use = [%.02f] years",
                           hours / double{kHoursPerYear});
     },
     "It is recommended to replace the drive if this value exceeds 5 years"},
    {Counter::kReallocatedSectors, "Moved Errors",
     [](std::int32_t sectors) {
         return formatText("05 = [%d] Bad sectors have been identified and remapped.", sectors);
     },
     "It is recommended to replace the drive if this value exceeds 50"},
    {Counter::kReallocationEvents, "Slow Sectors",
     [](std::int32_t events) { return formatText("C4 = [%d] Total Sector Remapping attempts.", events); },
     "Excessive attempts is a sign of ongoing failure.Replace the drive if this value exceeds 10"},
    {Counter::kPendingSectors, "Pending Sectors",
     [](std::int32_t sectors) {
         return formatText("C5 = [%d] Damaged sectors flagged to be remapped to the Spare area of the device.",
                           sectors);
     },
     "Indicates sign of increasing failure and drive should be replaced"},
    {Counter::kOfflineUncorrectable, "Uncorrectable Errors",
     [](std::int32_t attempts) { return formatText("C6 = [%d] Uncorrectable Sector Read/Write attempts.", attempts); },
     "Disk surface Defects and/or drive mechanics. Drive should be replaced"},
    {Counter::kReportedUncorrectable, "Reported Errors",
     [](std::int32_t errors) {
         return formatText("BB = [%d] Total reported unrecoverable errors using hardware (ECC)", errors);
     },
     "Any value other than zero should flag a drive for replacement"},
});
static_assert(namesEachCounterOnce(kCounterTexts), "each counter needs its section in a report");

ReportSection counterSection(const CounterText& text, std::int32_t value) {
    if (value == kNotReported) {
        return absent(text.title);
    }
    return {text.title, text.explain(value), text.recommendation, counterIcon(text.counter, value)};
}

ReportSection dataWritten(const NvmeHealth& health) {
    constexpr const char* kTitle = "Total Data Written to the Drive";
    if (health.dataUnitsWritten == kNotReported) {
        return unknown(kTitle);
    }
    const auto gigabytes = static_cast<std::int64_t>(health.gigabytesWritten);
    return {kTitle, formatText("%" PRId64 " Gigabytes of data has been written to the drive", gigabytes),
            "Standard Manufacturer Thresholds are between 70,000 and 150,000 Gigabytes", dataWrittenIcon(gigabytes)};
}

bool isSet(std::uint8_t warnings, CriticalWarning bit) {
    return (warnings & bit) != 0;
}

ReportSection availableSpare(const NvmeHealth& health, std::uint8_t warnings) {
    constexpr const char* kTitle = "Available Spare Space";
    if (health.availableSpare == kNotReported) {
        return unknown(kTitle);
    }
    return {kTitle,
            formatText("Available Spare is at %d percent. Failure Threshold is %d percent", health.availableSpare,
                       health.availableSpareThreshold),
            formatText("This data indicates that your drive is %s  manufacturer thresholds",
                       isSet(warnings, kSpareBelowThreshold) ? "outside" : "within"),
            availableSpareIcon(health.availableSpare, health.availableSpareThreshold)};
}

ReportSection temperature(std::uint8_t warnings) {
    constexpr const char* kTitle = "Tempeature Threshold";
    if (warnings == kWarningUnknown) {
        return unknown(kTitle);
    }
    const bool outside = isSet(warnings, kTemperatureOutside);
    return {kTitle, "Temperature Threshold for upper and lower manufacturer specifications",
            formatText("Drives current temperature threshold is %s", outside ? "outside of norms" : "within norms"),
            warningFlagIcon(outside)};
}

ReportSection subSystem(std::uint8_t warnings) {
    constexpr const char* kTitle = "Non-Volatile Memory Sub-System";
    if (warnings == kWarningUnknown) {
        return unknown(kTitle);
    }
    const bool degraded = isSet(warnings, kReliabilityDegraded);
    return {kTitle, "NVM Sub System Reliability may be degraded due to media or internal errors",
            formatText("NVM Sub-System flag indicates that this device %s degraded.", degraded ? "is" : "is not"),
            warningFlagIcon(degraded)};
}

// The one section without an icon, whatever it tells.
ReportSection readOnlyMode(std::uint8_t warnings) {
    constexpr const char* kTitle = "Read Only Mode Set";
    if (warnings == kWarningUnknown) {
        return unknown(kTitle);
    }
    return {kTitle, "Drive may be set into a read-only state to prevent damage",
            formatText("Your drive is currently in a %s state",
                       isSet(warnings, kReadOnlyMode) ? "read only critical" : "normal"),
            std::nullopt};
}

ReportSection memoryBackup(std::uint8_t warnings) {
    constexpr const char* kTitle = "Volatile Memory Backup Device";
    if (warnings == kWarningUnknown) {
        return unknown(kTitle);
    }
    const bool failed = isSet(warnings, kBackupFailed);
    return {kTitle, "Volatile Memory Backup Systems current state of operation indicates that",
            formatText("your drives VM Backup System is %s state (If Available)",
                       failed ? "in a critically damaged" : "in a normal"),
            warningFlagIcon(failed)};
}

} // namespace

ReportSections ataSections(const DriveRecord& drive) {
    ReportSections sections;
    for (const CounterText& text : kCounterTexts) {
        sections.push_back(counterSection(text, drive.disk[text.counter]));
    }
    return sections;
}

ReportSections nvmeSections(const DriveRecord& drive) {
    const auto warnings = static_cast<std::uint8_t>(drive.nvme.criticalWarning);
    return {dataWritten(drive.nvme), availableSpare(drive.nvme, warnings),
            temperature(warnings),   subSystem(warnings),
            readOnlyMode(warnings),  memoryBackup(warnings)};
}

void FormatTestResult(std::string& out, const char* testName, ReadTestResult result) {
    out = formatText("%s not performed", testName); // also of what is no result at all
    switch (result) {
    case ReadTestResult::kNotPerformed:
        return;
    case ReadTestResult::kFailed:
        out = formatText("%s FAILED", testName);
        return;
    case ReadTestResult::kPassed:
        out = formatText("%s PASSED", testName);
        return;
    case ReadTestResult::kTerminated:
        out = formatText("%s TERMINATED", testName);
        return;
    }
}

} // namespace torvane
