#include "details/tool_report.h"

#include "base/ascii.h"
#include "base/one_line.h"
#include "details/report_lines.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>

namespace torvane {

namespace {

/// The tool's own lines are far shorter.
constexpr std::size_t kMostLineBytes = 4096;

enum class Part {
    kNothing,
    kIdentity,
    kHealth,
    kCapabilities,
    kAttributes,
    kNvmeHealth,
    kNvmeErrors,
    kNvmeSelfTests,
    kErrors,
    kSelfTests,
    kTemperatures,
    kStatistics,
    kPendingDefects,
    kInterfaceCounters,
    kScsiErrorCounters,
};

/// The line with which a part of the report begins.
struct Opening {
    std::string_view line;
    Part part;
};

constexpr Opening kOpenings[] = {
    {"=== START OF INFORMATION SECTION", Part::kIdentity},
    {"=== START OF", Part::kHealth},
    {"General SMART Values:", Part::kCapabilities},
    {"ID# ATTRIBUTE_NAME", Part::kAttributes},
    {"SMART Attributes Data Structure", Part::kNothing},
    {"General Purpose Log Directory", Part::kNothing},
    {"SMART           Log Directory", Part::kNothing},
    {"SMART/Health Information (NVMe", Part::kNvmeHealth},
    {"Error Information (NVMe", Part::kNvmeErrors},
    {"Self-test Log (NVMe", Part::kNvmeSelfTests},
    {"SMART Extended Comprehensive Error Log", Part::kErrors},
    {"SMART Error Log", Part::kErrors},
    {"SMART Extended Self-test Log", Part::kSelfTests},
    {"SMART Self-test log", Part::kSelfTests},
    {"SMART Selective self-test log", Part::kNothing},
    {"SCT Status Version", Part::kTemperatures},
    {"SCT Temperature History Version", Part::kTemperatures},
    {"SCT Error Recovery Control", Part::kNothing},
    {"Device Statistics", Part::kStatistics},
    {"Pending Defects log", Part::kPendingDefects},
    {"SATA Phy Event Counters", Part::kInterfaceCounters},
    {"Error counter log:", Part::kScsiErrorCounters},
    {"Background scan results log", Part::kHealth},
    {"Protocol Specific port log", Part::kNothing},
};

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

template <typename Entry>
void add(std::vector<Entry>& entries, std::optional<Entry> entry) {
    if (entry && entries.size() < kMostReportEntries) {
        entries.push_back(std::move(*entry));
    }
}

class ReportReading {
  public:
    void take(std::string_view line) {
        if (enterPart(line) || takeVerdict(line) || takeFailure(line)) {
            return;
        }
        switch (part_) {
        case Part::kNothing:
            break;
        case Part::kIdentity:
            takeIdentity(line);
            break;
        case Part::kHealth:
            takeHealth(line);
            break;
        case Part::kCapabilities:
            takeCapability(line);
            break;
        case Part::kAttributes:
            add(report_.attributes, attributeLine(line));
            break;
        case Part::kNvmeHealth:
            add(report_.nvmeHealth, fieldLine(line));
            break;
        case Part::kNvmeErrors:
            takeNvmeError(line);
            break;
        case Part::kNvmeSelfTests:
            takeNvmeSelfTest(line);
            break;
        case Part::kErrors:
            takeError(line);
            break;
        case Part::kSelfTests:
            takeSelfTest(line);
            break;
        case Part::kTemperatures:
            takeTemperature(line);
            break;
        case Part::kStatistics:
            takeStatistic(line);
            break;
        case Part::kPendingDefects:
            takePendingDefect(line);
            break;
        case Part::kInterfaceCounters:
            addStatistic("SATA interface", interfaceCounterLine(line));
            break;
        case Part::kScsiErrorCounters:
            takeScsiErrorCounter(line);
            break;
        }
    }

    ToolReport end() {
        endError();
        if (!identified_) {
            report_.identity.clear();
            report_.verdict.clear();
            report_.failures.clear();
        }
        return std::move(report_);
    }

  private:
    bool enterPart(std::string_view line) {
        const auto* const found =
            std::ranges::find_if(kOpenings, [line](const Opening& opening) { return line.starts_with(opening.line); });
        if (found == std::end(kOpenings)) {
            return false;
        }
        endError();
        part_ = found->part;
        // A drive that fails has its failed attributes listed first, and all of them afterwards.
        if (part_ == Part::kAttributes) {
            report_.attributes.clear();
        }
        return true;
    }

    bool takeVerdict(std::string_view line) {
        constexpr std::string_view kVerdicts[] = {"SMART overall-health self-assessment test result:",
                                                  "SMART Health Status:"};
        for (const std::string_view beginning : kVerdicts) {
            if (line.starts_with(beginning)) {
                report_.verdict = withSingleBlanks(line.substr(beginning.size()));
                return true;
            }
        }
        return false;
    }

    bool takeFailure(std::string_view line) {
        const bool failed = (line.starts_with("Read ") || line.starts_with("SMART ") || line.starts_with("Write ")) &&
                            contains(line, " failed: ");
        if (failed) {
            addNote(report_.failures, line);
        }
        return failed;
    }

    static void addNote(std::vector<std::string>& notes, std::string_view line) {
        if (std::string note = withSingleBlanks(line); !note.empty()) {
            add(notes, std::optional(std::move(note)));
        }
    }

    /// Where the drive did not answer as the tool asked, as NVMe drives that are asked for ATA, the tool goes on with
    /// what it does not have: no model, and nothing available.
    void takeIdentity(std::string_view line) {
        constexpr std::string_view kNothing = "[No Information Found]";
        std::optional<ReportField> field = fieldLine(line);
        if (field && field->value.starts_with(kNothing)) {
            identified_ = identified_ && field->name != "Device Model";
            field.reset();
        }
        add(report_.identity, std::move(field));
    }

    /// Of SCSI all, of other drives what stands outside their tables.
    void takeHealth(std::string_view line) {
        constexpr std::string_view kHours = "Accumulated power on time, hours:minutes ";
        constexpr std::string_view kMade = "Manufactured in ";
        const std::string_view text = withoutBlanksAround(line);
        if (text.starts_with(kHours)) {
            add(report_.scsiHealth,
                std::optional(ReportField{"Power-on time, hours:minutes", std::string(text.substr(kHours.size()))}));
        } else if (text.starts_with(kMade)) {
            add(report_.scsiHealth, std::optional(ReportField{"Manufactured", std::string(text.substr(kMade.size()))}));
        } else if (contains(text, "Drive Temperature:") || contains(text, "Drive Trip Temperature:")) {
            add(report_.temperatures, fieldLine(text));
        } else if (!text.starts_with("SMART Status:")) {
            add(report_.scsiHealth, fieldLine(text));
        }
    }

    /// How long the drive's own tests take, and how the last one ended; the line before tells of which test it is.
    void takeCapability(std::string_view line) {
        constexpr std::string_view kRoutine = "self-test routine";
        constexpr std::string_view kTime = "recommended polling time:";
        const std::string text = withSingleBlanks(line);
        if (text.ends_with(kRoutine)) {
            routine_ = text.substr(0, text.size() - kRoutine.size()) + "self-test: ";
        } else if (text.starts_with(kTime) && !routine_.empty()) {
            const std::size_t open = text.find('(');
            const std::size_t close = text.find(')');
            if (open < close && close != std::string::npos) {
                const std::string minutes = withSingleBlanks(text.substr(open + 1, close - open - 1));
                addNote(report_.selfTestNotes,
                        routine_ + "takes about " + minutes + (minutes == "1" ? " minute" : " minutes"));
            }
            routine_.clear();
        }
    }

    void takeNvmeError(std::string_view line) {
        if (contains(line, "No Errors Logged")) {
            addNote(report_.errorNotes, line);
        }
        add(report_.errors, nvmeErrorLine(line));
    }

    void takeNvmeSelfTest(std::string_view line) {
        if (contains(line, "No Self-tests Logged") || line.starts_with("Self-test status:")) {
            addNote(report_.selfTestNotes, line);
        }
        add(report_.selfTests, nvmeSelfTestLine(line));
    }

    void takeError(std::string_view line) {
        if (contains(line, "No Errors Logged") || contains(line, " Error Count:")) {
            addNote(report_.errorNotes, line);
        } else if (std::optional<LoggedError> head = errorHeadLine(line)) {
            endError();
            error_ = std::move(head);
        } else if (error_) {
            takeErrorBody(line, *error_);
        }
    }

    /// The command that failed is the first of those that led to it, the last one before.
    void takeErrorBody(std::string_view line, LoggedError& error) {
        if (contains(line, "Command/Feature_Name")) {
            commandNext_ = true;
        } else if (contains(line, "Error: ")) {
            takeErrorLine(line, error);
        } else if (commandNext_ && !contains(line, "--")) {
            error.command = withSingleBlanks(line.substr(std::min(line.rfind("  "), line.size())));
            commandNext_ = false;
        }
    }

    void endError() {
        add(report_.errors, std::exchange(error_, std::nullopt));
        commandNext_ = false;
    }

    void takeSelfTest(std::string_view line) {
        if (line.starts_with("No ") || contains(line, "[No self-tests")) {
            addNote(report_.selfTestNotes, line.substr(0, line.find('[', 1)));
        }
        add(report_.selfTests, selfTestLine(line));
    }

    void takeTemperature(std::string_view line) {
        if (contains(line, "Celsius") || contains(line, "Limit Count:")) {
            add(report_.temperatures, fieldLine(line));
        }
    }

    void addStatistic(std::string_view group, std::optional<Statistic> statistic) {
        if (statistic) {
            statistic->group = group;
            add(report_.statistics, std::move(statistic));
        }
    }

    void takeStatistic(std::string_view line) {
        if (std::optional<std::string> group = statisticsGroupLine(line)) {
            group_ = std::move(*group);
        } else {
            addStatistic(group_, statisticLine(line));
        }
    }

    /// Sectors that the drive knows to be unreadable: index, LBA and, where it knows, hours.
    void takePendingDefect(std::string_view line) {
        const std::vector<std::string_view> words = wordsOf(line);
        if (contains(line, "No Defects Logged")) {
            addStatistic("Pending defects",
                         Statistic{.group = {}, .name = "Sectors that wait to be replaced", .value = "0"});
        } else if (words.size() >= 2 && isNumber(words[0])) {
            addStatistic("Pending defects", Statistic{.group = {},
                                                      .name = "Unreadable sector " + std::string(words[0]),
                                                      .value = "LBA " + std::string(words[1])});
        }
    }

    void takeScsiErrorCounter(std::string_view line) {
        std::optional<ReportField> counters = scsiErrorCounterLine(line);
        if (!counters && line.starts_with("Non-medium error count")) {
            counters = fieldLine(line);
        }
        add(report_.scsiHealth, std::move(counters));
    }

    ToolReport report_;
    Part part_ = Part::kNothing;
    bool identified_ = true;           ///< the drive answered as the tool asked
    std::string routine_;              ///< the self-test whose duration comes next
    std::string group_;                ///< of the statistics that come next
    std::optional<LoggedError> error_; ///< the one that is being read
    bool commandNext_ = false;         ///< the next command of the log is the one that failed
};

} // namespace

ToolReport readToolReport(std::string_view text) {
    text = text.substr(0, std::min(text.find('\0'), kMostReportBytes));
    ReportReading reading;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        // Tabs and a CR become blanks.
        const std::string line = oneLine(text.substr(0, std::min(end, kMostLineBytes)));
        reading.take(std::string_view(line).substr(0, line.find_last_not_of(' ') + 1));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return reading.end();
}

std::string_view fieldOf(const std::vector<ReportField>& fields, std::string_view name) {
    const auto found = std::ranges::find(fields, name, &ReportField::name);
    return found != fields.end() ? std::string_view(found->value) : std::string_view();
}

} // namespace torvane
