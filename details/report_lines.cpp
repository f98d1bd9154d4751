#include "details/report_lines.h"

#include "base/ascii.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>

namespace torvane {

namespace {

bool isHexNumber(std::string_view word) {
    return word.size() > 2 && word.starts_with("0x");
}

/// The columns of a table whose cells may hold single blanks: two or more part them.
std::vector<std::string_view> columnsOf(std::string_view line) {
    std::vector<std::string_view> columns;
    while (!(line = withoutBlanksAround(line)).empty()) {
        const std::size_t end = std::min(line.find("  "), line.size());
        columns.push_back(line.substr(0, end));
        line.remove_prefix(end);
    }
    return columns;
}

/// The line from its word of that index on; empty when it has fewer.
std::string_view fromWord(std::string_view line, std::size_t index) {
    const std::vector<std::string_view> words = wordsOf(line);
    if (index >= words.size()) {
        return {};
    }
    const auto at = static_cast<std::size_t>(words[index].data() - line.data());
    return withoutBlanksAround(line.substr(at));
}

std::string columnAt(std::span<const std::string_view> columns, std::size_t index) {
    return index < columns.size() ? std::string(columns[index]) : std::string();
}

/// The status of an ATA test may fill its column: one blank is left before the percentage then.
void partGluedPercentage(std::vector<std::string_view>& columns) {
    constexpr std::size_t kStatus = 2;
    if (columns.size() <= kStatus || !columns[kStatus].ends_with('%')) {
        return;
    }
    const std::string_view both = columns[kStatus];
    if (const std::size_t blank = both.rfind(' '); blank != std::string_view::npos) {
        columns[kStatus] = withoutBlanksAround(both.substr(0, blank));
        columns.insert(columns.begin() + kStatus + 1, both.substr(blank + 1));
    }
}

} // namespace

bool isNumber(std::string_view word) {
    return !word.empty() && std::ranges::all_of(word, [](char digit) { return digit >= '0' && digit <= '9'; });
}

std::vector<std::string_view> wordsOf(std::string_view line) {
    std::vector<std::string_view> words;
    while (!(line = withoutBlanksAround(line)).empty()) {
        const std::size_t end = std::min(line.find(' '), line.size());
        words.push_back(line.substr(0, end));
        line.remove_prefix(end);
    }
    return words;
}

std::string withSingleBlanks(std::string_view text) {
    std::string single;
    for (const std::string_view word : wordsOf(text)) {
        single.append(single.empty() ? "" : " ").append(word);
    }
    return single;
}

std::optional<ReportField> fieldLine(std::string_view line) {
    const std::size_t colon = line.find(": ");
    const std::size_t equals = line.find(" = ");
    const std::size_t end = std::min(colon, equals);
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    const std::size_t separator = end == colon ? 2 : 3;
    ReportField field{withSingleBlanks(line.substr(0, end)), withSingleBlanks(line.substr(end + separator))};
    return field.name.empty() ? std::nullopt : std::optional(std::move(field));
}

std::optional<SmartAttribute> attributeLine(std::string_view line) {
    constexpr std::size_t kBriefFailed = 6;
    constexpr std::size_t kOldFailed = 8; // behind type and update
    const std::vector<std::string_view> words = wordsOf(line);
    if (words.size() <= kBriefFailed || !(isNumber(words[0]) || isHexNumber(words[0]))) {
        return std::nullopt;
    }
    const std::size_t failed = isHexNumber(words[2]) ? kOldFailed : kBriefFailed;
    if (failed >= words.size()) {
        return std::nullopt;
    }
    return SmartAttribute{
        .id = std::string(words[0]),
        .name = std::string(words[1]),
        .raw = withSingleBlanks(fromWord(line, failed + 1)),
        .value = std::string(words[3]),
        .worst = std::string(words[4]),
        .threshold = std::string(words[5]),
        .failed = std::string(words[failed]),
    };
}

std::optional<SelfTest> selfTestLine(std::string_view line) {
    constexpr std::size_t kLeastColumns = 4;
    if (!line.starts_with('#')) {
        return std::nullopt;
    }
    std::vector<std::string_view> columns = columnsOf(line);
    partGluedPercentage(columns);
    if (columns.size() < kLeastColumns) {
        return std::nullopt;
    }
    return SelfTest{
        .number = std::string(withoutBlanksAround(columns[0].substr(1))),
        .test = columnAt(columns, 1),
        .status = columnAt(columns, 2),
        .remaining = columnAt(columns, 3),
        .hours = columnAt(columns, 4),
        .lba = columnAt(columns, 5),
    };
}

std::optional<SelfTest> nvmeSelfTestLine(std::string_view line) {
    constexpr std::size_t kLeastColumns = 4;
    const std::vector<std::string_view> columns = columnsOf(line);
    if (columns.size() < kLeastColumns || !isNumber(columns[0])) {
        return std::nullopt;
    }
    return SelfTest{
        .number = std::string(columns[0]),
        .test = columnAt(columns, 1),
        .status = columnAt(columns, 2),
        .remaining = {},
        .hours = columnAt(columns, 3),
        .lba = columnAt(columns, 4),
    };
}

std::optional<LoggedError> errorHeadLine(std::string_view line) {
    constexpr std::string_view kAge = "power-on lifetime:";
    const std::vector<std::string_view> words = wordsOf(line);
    const std::size_t age = line.find(kAge);
    if (words.size() < 2 || words[0] != "Error" || !isNumber(words[1]) || age == std::string_view::npos) {
        return std::nullopt;
    }
    const std::vector<std::string_view> hours = wordsOf(line.substr(age + kAge.size()));
    return LoggedError{.number = std::string(words[1]),
                       .hours = hours.empty() ? std::string() : std::string(hours[0]),
                       .error = {},
                       .lba = {},
                       .command = {}};
}

void takeErrorLine(std::string_view line, LoggedError& error) {
    constexpr std::string_view kError = "Error: ";
    constexpr std::string_view kAt = " at LBA = ";
    const std::size_t begin = line.find(kError);
    if (begin == std::string_view::npos) {
        return;
    }
    const std::string_view told = line.substr(begin + kError.size());
    const std::size_t at = told.find(kAt);
    error.error = withSingleBlanks(told.substr(0, at));
    if (at != std::string_view::npos) {
        error.lba = withoutBlanksAround(told.substr(told.rfind("= ") + 2));
    }
}

std::optional<LoggedError> nvmeErrorLine(std::string_view line) {
    constexpr std::size_t kErrorCount = 1;
    constexpr std::size_t kStatus = 4;
    constexpr std::size_t kLba = 6;
    constexpr std::size_t kMessage = 9;
    const std::vector<std::string_view> words = wordsOf(line);
    if (words.size() < kMessage || !isNumber(words[0])) {
        return std::nullopt;
    }
    return LoggedError{
        .number = std::string(words[kErrorCount]),
        .hours = {},
        .error = withSingleBlanks(
            std::string("status ").append(words[kStatus]).append(" ").append(fromWord(line, kMessage))),
        .lba = std::string(words[kLba]),
        .command = {},
    };
}

std::optional<Statistic> statisticLine(std::string_view line) {
    constexpr std::size_t kValue = 3;
    constexpr std::size_t kFlags = 4;
    constexpr std::size_t kFlagLetters = 3;
    const std::vector<std::string_view> words = wordsOf(line);
    if (words.size() <= kFlags || !isHexNumber(words[0]) || !isHexNumber(words[1])) {
        return std::nullopt;
    }
    // "NDC+": normalised, with a notification, and its condition met. Older versions of the tool print none.
    const std::string_view flags = words[kFlags];
    const bool hasFlags = flags.size() >= kFlagLetters && flags.find_first_not_of("NDC-+~?") == std::string_view::npos;
    Statistic statistic{.group = {},
                        .name = withSingleBlanks(fromWord(line, hasFlags ? kFlags + 1 : kFlags)),
                        .value = std::string(words[kValue]),
                        .conditionMet = hasFlags && flags.find('C') != std::string_view::npos};
    return statistic.name.empty() ? std::nullopt : std::optional(std::move(statistic));
}

std::optional<std::string> statisticsGroupLine(std::string_view line) {
    constexpr std::string_view kBegin = " == ";
    const std::size_t begin = line.find(kBegin);
    if (!line.starts_with("0x") || line.find("=====") == std::string_view::npos || begin == std::string_view::npos) {
        return std::nullopt;
    }
    std::string_view name = line.substr(begin + kBegin.size());
    name = name.substr(0, name.find(" =="));
    return withSingleBlanks(name.substr(0, name.find(" (rev")));
}

std::optional<Statistic> interfaceCounterLine(std::string_view line) {
    constexpr std::size_t kValue = 2;
    const std::vector<std::string_view> words = wordsOf(line);
    if (words.size() <= kValue + 1 || !isHexNumber(words[0])) {
        return std::nullopt;
    }
    return Statistic{
        .group = {}, .name = withSingleBlanks(fromWord(line, kValue + 1)), .value = std::string(words[kValue])};
}

std::optional<ReportField> scsiErrorCounterLine(std::string_view line) {
    constexpr std::size_t kWords = 8;
    const std::vector<std::string_view> words = wordsOf(line);
    if (words.size() != kWords || words[0].size() < 2 || !words[0].ends_with(':')) {
        return std::nullopt;
    }
    std::string name(words[0].substr(0, words[0].size() - 1));
    name.front() = upperAscii(name.front());
    return ReportField{name + " errors", std::string("uncorrected ")
                                             .append(words[7])
                                             .append(", corrected ")
                                             .append(words[4])
                                             .append(" (fast ")
                                             .append(words[1])
                                             .append(", delayed ")
                                             .append(words[2])
                                             .append(", by repetition ")
                                             .append(words[3])
                                             .append("), moved ")
                                             .append(words[6])
                                             .append(" GB")};
}

} // namespace torvane
