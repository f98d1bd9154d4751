#pragma once

#include "base/colours.h"
#include "copy/evidence/source_map.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace torvane {

/// What a part of the drive is to whoever looks at a rescue.
enum class RescueShade : std::uint8_t {
    kRead,
    kUntried,
    kMissing, ///< a larger read has failed there
    kBad,     ///< sectors that failed by themselves
};
inline constexpr std::size_t kRescueShadeCount = 4;

/// How an area is filled, besides its colour, so that nothing is told by colour alone: all of it, none of it, or lines.
enum class RescuePattern : std::uint8_t { kSolid, kEmpty, kSlanted, kCrossed };

struct RescueKeyEntry {
    std::string_view text;
    ColourCode colour = 0; ///< of the fill or the lines
    RescuePattern pattern = RescuePattern::kSolid;
};

/// The key, by `RescueShade`, and last the place of now, which is a line across the strip.
inline constexpr std::array<RescueKeyEntry, kRescueShadeCount + 1> kRescueKey{{
    {.text = "Read", .colour = colour(0, 114, 178), .pattern = RescuePattern::kSolid},
    {.text = "Untried", .colour = colour(150, 150, 150), .pattern = RescuePattern::kEmpty},
    {.text = "Missing", .colour = colour(230, 159, 0), .pattern = RescuePattern::kSlanted},
    {.text = "Bad", .colour = colour(190, 0, 0), .pattern = RescuePattern::kCrossed},
    {.text = "Now", .colour = colour(0, 0, 0), .pattern = RescuePattern::kSolid},
}};

/// A part of the strip. Pixels from its top left corner.
struct RescueBar {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    RescueShade shade = RescueShade::kRead;

    bool operator==(const RescueBar&) const = default;
};

/// The whole drive from left to right, in bars that cover the strip. Within a column of pixels each shade is as high as
/// its share of the column's part of the drive, in the key's order from the top; what is there at all is at least a
/// pixel high, what is missing or bad a fifth of the strip, so that a single bad sector is seen on the largest drive.
struct RescuePicture {
    std::vector<RescueBar> bars;
    std::optional<int> now; ///< the column that is worked at; none when nothing is

    bool operator==(const RescuePicture&) const = default;
};

/// The picture of a map and of the place that was read last, in bytes; without one when nothing is read. Empty for a
/// strip without columns or with fewer rows than shades, and for a source of fewer bytes than columns. Takes the number
/// of ranges and of columns.
[[nodiscard]] RescuePicture layOutRescuePicture(const SourceMap& map, std::optional<std::uint64_t> place, int width,
                                                int height);

} // namespace torvane
