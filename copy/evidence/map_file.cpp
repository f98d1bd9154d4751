#include "copy/evidence/map_file.h"

#include "base/format.h"
#include "base/one_line.h"

#include <algorithm>
#include <cinttypes>

namespace torvane {

namespace {

/// What is to be done next, and where: the format's status line. Its passes begin with 1.
std::string statusLine(const std::vector<MappedRange>& ranges) {
    for (const RangeStatus phase :
         {RangeStatus::kNonTried, RangeStatus::kNonTrimmed, RangeStatus::kNonScraped, RangeStatus::kBad}) {
        const auto first = std::ranges::find(ranges, phase, &MappedRange::status);
        if (first != ranges.end()) {
            return formatText("0x%08" PRIX64 "     %c               1\n", first->offset, static_cast<char>(phase));
        }
    }
    return "0x00000000     +               1\n";
}

} // namespace

std::string mapFileText(const SourceMap& map, const std::vector<std::string>& headings) {
    std::string text;
    for (const std::string& heading : headings) {
        text.append("# ").append(oneLine(heading)).append("\n");
    }
    const std::vector<MappedRange> ranges = map.ranges();
    text.append("# current_pos  current_status  current_pass\n").append(statusLine(ranges));
    text.append("#      pos        size  status\n");
    for (const MappedRange& range : ranges) {
        text += formatText("0x%08" PRIX64 "  0x%08" PRIX64 "  %c\n", range.offset, range.length,
                           static_cast<char>(range.status));
    }
    return text;
}

} // namespace torvane
