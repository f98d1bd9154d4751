#pragma once

#include "copy/evidence/source_map.h"

#include <string>
#include <vector>

namespace torvane {

/// The map in the form of GNU ddrescue's map file (its manual, "Mapfile structure"), by which that program reads the
/// source's missing places into the copy, and leaves the rest of it alone. Places are the same in source and copy. Each
/// heading becomes a line of comment. Lines end in a bare line feed.
[[nodiscard]] std::string mapFileText(const SourceMap& map, const std::vector<std::string>& headings);

} // namespace torvane
