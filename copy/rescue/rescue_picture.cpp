#include "copy/rescue/rescue_picture.h"

#include <algorithm>
#include <numeric>

namespace torvane {

namespace {

using Shares = std::array<std::uint64_t, kRescueShadeCount>; // bytes of each shade
using Heights = std::array<int, kRescueShadeCount>;          // pixels of each shade

RescueShade shadeOf(RangeStatus status) {
    switch (status) {
    case RangeStatus::kFinished:
        return RescueShade::kRead;
    case RangeStatus::kBad:
        return RescueShade::kBad;
    case RangeStatus::kNonTrimmed:
    case RangeStatus::kNonScraped:
        return RescueShade::kMissing;
    case RangeStatus::kNonTried:
        break;
    }
    return RescueShade::kUntried;
}

/// Which bytes of a source a column stands for: at least one each. No product of them overflows.
class Columns {
  public:
    Columns(std::uint64_t size, int count)
        : whole_(size / static_cast<unsigned>(count)), rest_(size % static_cast<unsigned>(count)),
          count_(static_cast<unsigned>(count)) {}

    [[nodiscard]] std::uint64_t begin(int column) const {
        const auto number = static_cast<unsigned>(column);
        return whole_ * number + rest_ * number / count_;
    }

    /// The column that holds a byte within the source.
    [[nodiscard]] int holding(std::uint64_t place) const {
        auto column = static_cast<int>(std::min(place / whole_, count_ - 1));
        while (column > 0 && begin(column) > place) {
            --column;
        }
        return column;
    }

  private:
    std::uint64_t whole_;
    std::uint64_t rest_;
    std::uint64_t count_;
};

std::vector<Shares> sharesOf(const SourceMap& map, const Columns& columns, int width) {
    std::vector<Shares> shares(static_cast<std::size_t>(width));
    int column = 0;
    for (const MappedRange& range : map.ranges()) {
        const std::uint64_t end = range.offset + range.length;
        const auto shade = static_cast<std::size_t>(shadeOf(range.status));
        for (std::uint64_t at = range.offset; at < end;) {
            while (columns.begin(column + 1) <= at) {
                ++column;
            }
            const std::uint64_t here = std::min(end, columns.begin(column + 1));
            shares[static_cast<std::size_t>(column)][shade] += here - at;
            at = here;
        }
    }
    return shares;
}

/// The height below which a shade that is there does not fall, in pixels.
int leastHeight(RescueShade shade, int height) {
    const bool isLost = shade == RescueShade::kMissing || shade == RescueShade::kBad;
    return isLost ? std::max(1, height / 5) : 1;
}

/// The largest shade gives up what rounding and the least heights of the others take.
Heights heightsOf(const Shares& shares, int height) {
    const std::uint64_t sum = std::accumulate(shares.begin(), shares.end(), std::uint64_t{0});
    Heights heights{};
    int given = 0;
    for (std::size_t shade = 0; shade < shares.size(); ++shade) {
        if (shares[shade] != 0) {
            const double part = static_cast<double>(shares[shade]) / static_cast<double>(sum);
            heights[shade] =
                std::max(leastHeight(static_cast<RescueShade>(shade), height), static_cast<int>(part * height));
        }
        given += heights[shade];
    }
    const auto largest = std::ranges::max_element(shares) - shares.begin();
    heights[static_cast<std::size_t>(largest)] += height - given;
    return heights;
}

/// Adds a column to the right: it widens bars that are alike beside it.
void addColumn(std::vector<RescueBar>& bars, std::size_t& lastColumn, const Heights& heights, int left) {
    std::vector<RescueBar> column;
    column.reserve(heights.size());
    int top = 0;
    for (std::size_t shade = 0; shade < heights.size(); ++shade) {
        if (heights[shade] != 0) {
            column.push_back({.left = left,
                              .top = top,
                              .width = 1,
                              .height = heights[shade],
                              .shade = static_cast<RescueShade>(shade)});
        }
        top += heights[shade];
    }
    const auto alike = [](const RescueBar& one, const RescueBar& other) {
        return one.shade == other.shade && one.height == other.height;
    };
    const auto last = bars.begin() + static_cast<std::ptrdiff_t>(lastColumn);
    if (std::equal(last, bars.end(), column.begin(), column.end(), alike)) {
        std::for_each(last, bars.end(), [](RescueBar& bar) { ++bar.width; });
    } else {
        lastColumn = bars.size();
        bars.insert(bars.end(), column.begin(), column.end());
    }
}

} // namespace

RescuePicture layOutRescuePicture(const SourceMap& map, std::optional<std::uint64_t> place, int width, int height) {
    RescuePicture picture;
    if (width < 1 || height < static_cast<int>(kRescueShadeCount) || map.size() < static_cast<unsigned>(width)) {
        return picture;
    }
    const Columns columns(map.size(), width);
    std::size_t lastColumn = 0;
    int left = 0;
    for (const Shares& shares : sharesOf(map, columns, width)) {
        addColumn(picture.bars, lastColumn, heightsOf(shares, height), left++);
    }
    if (place) {
        picture.now = columns.holding(std::min(*place, map.size() - 1));
    }
    return picture;
}

} // namespace torvane
