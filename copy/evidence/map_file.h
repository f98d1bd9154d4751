#pragma once

#include "copy/evidence/source_map.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace torvane {

// GNU ddrescue's map file (its manual, "Mapfile structure"), by which that program reads the source's missing places
// into the copy, and leaves the rest of it alone. Places are the same in source and copy.

/// What is at work, or was when the map was saved: the format's status line.
struct MapStatus {
    std::uint64_t position = 0; ///< where a pass forwards begins next; where one backwards ends
    char phase = '+';           ///< the status of the ranges at work; 'F' and 'G' are other works; '+' finished
    unsigned pass = 1;          ///< within the phase, from 1

    bool operator==(const MapStatus&) const = default;
};

/// The first place that is missing, and what comes next there.
[[nodiscard]] MapStatus nextWork(const SourceMap& map);

/// The map as text. Each heading becomes a line of comment. Lines end in a bare line feed.
[[nodiscard]] std::string mapFileText(const SourceMap& map, const std::vector<std::string>& headings);
[[nodiscard]] std::string mapFileText(const SourceMap& map, const MapStatus& status,
                                      const std::vector<std::string>& headings);

/// What a map file tells.
struct MapFile {
    SourceMap map;
    MapStatus status;
    std::vector<std::string> comments; ///< without the character that begins them and the blank behind it
};

/// Why a text is no map.
struct MapFault {
    std::size_t line = 0; ///< from 1
    std::string reason;   ///< in words

    bool operator==(const MapFault&) const = default;
};

/// Reads whatever the format allows: comments, blank lines, numbers as in C (decimal, hexadecimal, octal), a status
/// line with or without its pass, blocks that follow each other. The map is of a source of `size` bytes, of which the
/// file may tell a part: the rest was never tried. Behind the source's end it may tell of places that were never tried,
/// and of nothing else. Without `size`, the source ends with the last block.
[[nodiscard]] std::variant<MapFile, MapFault> readMapFile(std::string_view text,
                                                          std::optional<std::uint64_t> size = std::nullopt);

} // namespace torvane
