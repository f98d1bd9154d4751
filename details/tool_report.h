#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace torvane {

// What smartctl prints of a drive with "-x", taken apart: ATA, NVMe and SCSI. The text is outside text. Whatever it is,
// reading it succeeds: a line that is not known is left out here and stays in the tool's own text.

/// A line "name: value".
struct ReportField {
    std::string name;
    std::string value;

    bool operator==(const ReportField&) const = default;
};

/// A row of the attribute table, in the "brief" and the "old" form of it alike. Texts, because a drive may report none
/// of the numbers ("---"), and raw values have many forms ("32 (Min/Max 21/38)").
struct SmartAttribute {
    std::string id;
    std::string name;
    std::string raw;
    std::string value;
    std::string worst;
    std::string threshold;
    std::string failed; ///< "-", "NOW" or "Past" ("FAILING_NOW" or "In_the_past" in the old form)

    bool operator==(const SmartAttribute&) const = default;
};

/// A self-test that the drive remembers.
struct SelfTest {
    std::string number;
    std::string test;
    std::string status;
    std::string remaining; ///< "00%"; of SCSI the segment in which it failed; empty for NVMe
    std::string hours;     ///< the drive's age at its end
    std::string lba;       ///< the first bad one, or "-"

    bool operator==(const SelfTest&) const = default;
};

/// An entry of the error log.
struct LoggedError {
    std::string number;
    std::string hours; ///< the drive's age; empty for NVMe
    std::string error; ///< "UNC"
    std::string lba;
    std::string command; ///< "READ FPDMA QUEUED": what the drive was asked

    bool operator==(const LoggedError&) const = default;
};

/// A counter of the ATA device statistics, and of the interface's.
struct Statistic {
    std::string group;
    std::string name;
    std::string value;
    bool conditionMet = false; ///< the drive's own limit was reached

    bool operator==(const Statistic&) const = default;
};

struct ToolReport {
    std::vector<ReportField> identity; ///< "Device Model", "User Capacity" and their like
    std::string verdict;               ///< "PASSED", "FAILED!", "OK"; empty: the drive gave none
    std::vector<SmartAttribute> attributes;
    std::vector<ReportField> nvmeHealth;    ///< the SMART / Health Information log
    std::vector<ReportField> scsiHealth;    ///< defect list, error counters, background scan
    std::vector<ReportField> temperatures;  ///< of the SCT status, or of a SCSI drive
    std::vector<std::string> selfTestNotes; ///< sentences of the log, "No self-tests have been logged"
    std::vector<SelfTest> selfTests;
    std::vector<std::string> errorNotes; ///< "Device Error Count: 3", "No Errors Logged"
    std::vector<LoggedError> errors;
    std::vector<Statistic> statistics;
    std::vector<std::string> failures; ///< what the tool could not read: "Read Self-test Log failed: ..."
};

/// Bytes of a report that are read, and entries that are kept of each list; what is beyond them stays in the tool's own
/// text.
inline constexpr std::size_t kMostReportBytes = std::size_t{4} << 20U;
inline constexpr std::size_t kMostReportEntries = 1000;

/// Lines end in LF or CR LF; the text ends at its first NUL.
[[nodiscard]] ToolReport readToolReport(std::string_view text);

/// The value of the first field of that name; empty when there is none.
[[nodiscard]] std::string_view fieldOf(const std::vector<ReportField>& fields, std::string_view name);

} // namespace torvane
