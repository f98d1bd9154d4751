#pragma once

#include "copy/evidence/map_file.h"
#include "copy/rescue/rescue_planner.h"

#include <string>
#include <vector>

namespace torvane {

/// The map of a rescue as text: a comment behind the headings tells that it is one, and in which direction it goes.
[[nodiscard]] std::string rescueMapText(const SourceMap& map, const MapStatus& status, bool fromEnd,
                                        std::vector<std::string> headings);

/// What a map that is taken up tells of where it comes from. `fromEnd`: the rescue that goes on with it begins from the
/// end; the place where another has stopped counts for one in the same direction alone.
[[nodiscard]] RescueOrigin rescueOriginOf(const MapFile& file, bool fromEnd);

} // namespace torvane
