#include "copy/rescue/rescue_map.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace torvane {

namespace {

constexpr std::string_view kFromStart = "Rescue from the start";
constexpr std::string_view kFromEnd = "Rescue from the end";

/// Of the program by which a copy is continued elsewhere; it begins from the start unless it is told otherwise.
constexpr std::string_view kOtherRescue = "Mapfile. Created by GNU ddrescue";

bool hasComment(const MapFile& file, std::string_view beginning) {
    return std::ranges::any_of(file.comments,
                               [&](const std::string& comment) { return comment.starts_with(beginning); });
}

} // namespace

std::string rescueMapText(const SourceMap& map, const MapStatus& status, bool fromEnd,
                          std::vector<std::string> headings) {
    headings.emplace_back(fromEnd ? kFromEnd : kFromStart);
    return mapFileText(map, status, headings);
}

RescueOrigin rescueOriginOf(const MapFile& file, bool fromEnd) {
    const bool began = hasComment(file, kFromStart);
    const bool ended = hasComment(file, kFromEnd);
    RescueOrigin origin{.fromRescue = began || ended, .place = std::nullopt};
    if (fromEnd ? ended : began || (!ended && hasComment(file, kOtherRescue))) {
        origin.place = file.status;
    }
    return origin;
}

} // namespace torvane
