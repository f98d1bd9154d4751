#include "copy/evidence/map_file.h"

#include "base/format.h"
#include "base/one_line.h"

#include <cinttypes>

namespace torvane {

MapStatus nextWork(const SourceMap& map) {
    for (const RangeStatus phase :
         {RangeStatus::kNonTried, RangeStatus::kNonTrimmed, RangeStatus::kNonScraped, RangeStatus::kBad}) {
        if (const auto first = map.next(phase, 0)) {
            return {.position = first->offset, .phase = static_cast<char>(phase)};
        }
    }
    return {};
}

std::string mapFileText(const SourceMap& map, const std::vector<std::string>& headings) {
    return mapFileText(map, nextWork(map), headings);
}

std::string mapFileText(const SourceMap& map, const MapStatus& status, const std::vector<std::string>& headings) {
    std::string text;
    for (const std::string& heading : headings) {
        text.append("# ").append(oneLine(heading)).append("\n");
    }
    text += "# current_pos  current_status  current_pass\n";
    text += formatText("0x%08" PRIX64 "     %c               %u\n", status.position, status.phase, status.pass);
    text += "#      pos        size  status\n";
    for (const MappedRange& range : map.ranges()) {
        text += formatText("0x%08" PRIX64 "  0x%08" PRIX64 "  %c\n", range.offset, range.length,
                           static_cast<char>(range.status));
    }
    return text;
}

} // namespace torvane
