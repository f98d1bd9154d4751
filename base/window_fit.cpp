#include "base/window_fit.h"

#include <algorithm>

namespace torvane {

WindowFit fitInto(const PixelSize& content, const PixelSize& room, const PixelSize& bars) {
    bool horizontal = content.width > room.width;
    const bool vertical = content.height > room.height - (horizontal ? bars.height : 0);
    horizontal = content.width > room.width - (vertical ? bars.width : 0);
    const int widest = room.width - (vertical ? bars.width : 0);
    const int highest = room.height - (horizontal ? bars.height : 0);
    return {{std::max(0, std::min(content.width, widest)), std::max(0, std::min(content.height, highest))},
            horizontal,
            vertical};
}

int scrollPosition(int wanted, int content, int page) {
    return std::clamp(wanted, 0, std::max(0, content - page));
}

int scrollToShow(int position, int page, int from, int to, int margin) {
    const bool all = from >= position && to <= position + page;
    // Of what is longer than the page its beginning, or all that the page shows.
    const bool enough = to - from > page && from <= position + page / 2 && to >= position + page;
    if (all || enough) {
        return 0;
    }
    const int fromEdge = from - margin - position;
    const int toEdge = to + margin - (position + page);
    return from < position || to - from + 2 * margin > page ? fromEdge : toEdge;
}

} // namespace torvane
