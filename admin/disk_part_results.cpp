#include "admin/disk_part_results.h"

#include "monitoring/text_scanners.h"

#include <array>
#include <string_view>

namespace torvane {

namespace {

using Line = std::array<char, 4096>;
using Word = std::array<char, 256>;

// "Current Read-only State : No"
constexpr int kReadOnlyWord = 4;
// "Automatic mounting of new volumes enabled."
constexpr int kMountingWord = 5;

// The word carries the sentence's full stop, hence the comparison of its beginning alone.
MountStatus mountStatusInLine(const Line& line) {
    Word word{};
    if (PARSE_GetWord(line.data(), word, kMountingWord) == 0) {
        return kMountingUndetermined;
    }
    const std::string_view status(word.data());
    if (status.starts_with("disabled")) {
        return kMountingDisabled;
    }
    return status.starts_with("enabled") ? kMountingEnabled : kMountingUndetermined;
}

bool readOnlyStateIs(const char* results, std::string_view state) {
    Line line{};
    Word word{};
    return PARSE_FindLine(results, line, "Read-only") >= 0 && PARSE_GetWord(line.data(), word, kReadOnlyWord) != 0 &&
           std::string_view(word.data()) == state;
}

} // namespace

bool reportsWritableDisk(const char* results) {
    return readOnlyStateIs(results, "No");
}

bool reportsReadOnlyDisk(const char* results) {
    return readOnlyStateIs(results, "Yes");
}

MountStatus mountStatusInReport(const char* results) {
    Line line{};
    return PARSE_FindLine(results, line, "mounting") >= 0 ? mountStatusInLine(line) : kMountingUndetermined;
}

MountStatus mountStatusAfterScrub(const char* results) {
    Line line{};
    const int scrubbed = PARSE_FindLine(results, line, "successfully scrubbed");
    if (scrubbed < 0 || PARSE_GetLine(scrubbed + 2, results, line) == 0) {
        return kMountingUndetermined;
    }
    return mountStatusInLine(line);
}

CleanReport cleanReport(const char* results) {
    std::array<char, 1024> line{};
    if (PARSE_FindLine(results, line, "succeeded") >= 0) {
        return CleanReport::kSucceeded;
    }
    const bool english = PARSE_FindLine(results, line, "is now the selected disk") >= 0;
    return english || *results == '\0' ? CleanReport::kRefused : CleanReport::kOtherLanguage;
}

bool wasCleaned(const std::optional<PartitionTable>& before, const std::optional<PartitionTable>& after,
                CleanReport reported) {
    if (reported == CleanReport::kNotRun) {
        return false;
    }
    if (!after) {
        return reported == CleanReport::kSucceeded;
    }
    return after->partitions == 0 && (reported != CleanReport::kRefused || (before && *before != *after));
}

} // namespace torvane
