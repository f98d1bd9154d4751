#include "details/log_pages.h"

#include "base/format.h"
#include "base/line_ends.h"
#include "base/utf8.h"
#include "details/meanings.h"
#include "details/page_rows.h"
#include "details/report_lines.h"
#include "health/grading.h"
#include "monitoring/leading_number.h"
#include "records/drive_record.h"
#include "records/sector_size.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace torvane {

namespace {

// --- Attributes

/// The drive's own verdict on the attribute first; then whether it counts what should not be.
std::string stateOf(const SmartAttribute& attribute, const AttributeMeaning& meaning) {
    if (attribute.failed == "NOW" || attribute.failed == "FAILING_NOW") {
        return "FAILING NOW";
    }
    if (attribute.failed == "Past" || attribute.failed == "In_the_past") {
        return "failed before";
    }
    return meaning.countsFaults && leadingInt64(attribute.raw) > 0 ? "NOT ZERO" : "ok";
}

DetailRow attributeRow(const SmartAttribute& attribute) {
    const AttributeMeaning meaning = attributeMeaning(attribute.name);
    const std::string_view words = meaning.words.empty() ? "of the maker's own; not made known" : meaning.words;
    return {.cells = {attribute.id, attribute.name, attribute.raw, attribute.value, attribute.worst,
                      attribute.threshold, stateOf(attribute, meaning), std::string(words)}};
}

const char* whyNoAttributes(const DriveRecord& drive, const ToolReport& report) {
    if (drive.smartType == kSmartTypeNvme || !report.nvmeHealth.empty()) {
        return "An NVMe drive has no attributes: the page Health has its log.";
    }
    if (!report.scsiHealth.empty()) {
        return "A SCSI drive has no attributes: the page Health has what it counts.";
    }
    return "The drive's report has no attributes.";
}

// --- Notes above a table, whose first column has room for them

void addNotes(const std::vector<std::string>& notes, DetailPage& page) {
    for (const std::string& note : notes) {
        page.rows.push_back({.cells = {note}, .heading = true});
    }
}

// --- Statistics

bool isWholeNumber(std::string_view text) {
    constexpr std::size_t kMostDigits = 19; // of 64 bits
    return text.size() <= kMostDigits && isNumber(text);
}

std::string valueText(const Statistic& statistic) {
    if (statistic.value == "-") {
        return "not told";
    }
    return isWholeNumber(statistic.value) ? thousandsText(static_cast<std::uint64_t>(leadingInt64(statistic.value)))
                                          : statistic.value;
}

/// With what was moved in bytes, for the sectors that were.
std::string meaningOf(const Statistic& statistic, const DriveRecord& drive) {
    std::string meaning(statisticMeaning(statistic.name));
    if (statistic.name.starts_with("Logical Sectors ") && isWholeNumber(statistic.value)) {
        const double bytes =
            static_cast<double>(leadingInt64(statistic.value)) * static_cast<double>(sectorSizeOf(drive));
        meaning += formatText(": %.2f TB", bytes / 1e12);
    }
    return statistic.conditionMet ? "LIMIT REACHED. " + meaning : meaning;
}

DetailPage orSentence(DetailPage page, std::string_view sentence) {
    if (page.rows.empty()) {
        return sentencePage(page.title, sentence);
    }
    return page;
}

} // namespace

DetailPage attributePage(const DriveRecord& drive, const ToolReport& report) {
    DetailPage page{.title = "Attributes",
                    .columns = {{"ID", 36},
                                {"Attribute", 176},
                                {"Raw value", 132},
                                {"Value", 44},
                                {"Worst", 44},
                                {"Threshold", 70},
                                {"State", 84},
                                {"What it means", 424}},
                    .rows = {},
                    .text = {}};
    page.rows.reserve(report.attributes.size());
    std::ranges::transform(report.attributes, std::back_inserter(page.rows), attributeRow);
    return orSentence(std::move(page), whyNoAttributes(drive, report));
}

DetailPage selfTestPage(const ToolReport& report) {
    DetailPage page{
        .title = "Self-tests",
        .columns =
            {{"Test", 330}, {"Result", 270}, {"Remaining", 80}, {"At hours", 90}, {"First bad LBA", 160}, {"No.", 80}},
        .rows = {},
        .text = {}};
    addNotes(report.selfTestNotes, page);
    page.rows.reserve(page.rows.size() + report.selfTests.size());
    for (const SelfTest& test : report.selfTests) {
        page.rows.push_back({.cells = {test.test, test.status, test.remaining, test.hours, test.lba, test.number}});
    }
    return orSentence(std::move(page), "The drive's report has no log of self-tests.");
}

DetailPage errorLogPage(const ToolReport& report) {
    DetailPage page{.title = "Error log",
                    .columns = {{"Error", 430}, {"LBA", 160}, {"Command", 240}, {"At hours", 90}, {"No.", 90}},
                    .rows = {},
                    .text = {}};
    addNotes(report.errorNotes, page);
    page.rows.reserve(page.rows.size() + report.errors.size());
    for (const LoggedError& error : report.errors) {
        page.rows.push_back({.cells = {error.error, error.lba, error.command, error.hours, error.number}});
    }
    return orSentence(std::move(page), "The drive's report has no error log.");
}

DetailPage statisticPage(const DriveRecord& drive, const ToolReport& report) {
    DetailPage page;
    PageRows rows(page, "Statistics");
    std::string_view group;
    for (const Statistic& statistic : report.statistics) {
        if (statistic.group != group) {
            group = statistic.group;
            rows.heading(group);
        }
        rows.add(statistic.name, valueText(statistic), meaningOf(statistic, drive));
    }
    return orSentence(std::move(page), "The drive's report has no statistics.");
}

DetailPage reportPage(const DriveRecord& drive) {
    constexpr std::size_t kMostShown = std::size_t{1} << 20U;
    constexpr std::string_view kCut = "\r\n\r\n[The report goes on: its file has all of it.]\r\n";
    std::string_view text = drive.smartText;
    text = text.substr(0, text.find('\0'));
    DetailPage page{
        .title = "Report", .columns = {}, .rows = {}, .text = withWindowsLineEnds(cutAtCharacter(text, kMostShown))};
    if (page.text.empty()) {
        page.text = "smartctl.exe left no report of this drive at the last scan.\r\n";
    }
    page.text.append(text.size() > kMostShown ? kCut : std::string_view());
    return page;
}

} // namespace torvane
