#pragma once

#include "base/scale.h"

namespace torvane {

/// How a window shows a content that may be larger than its room. Pixels.
struct WindowFit {
    PixelSize page;  ///< what shows of the content at a time
    bool horizontal; ///< there is a scroll bar below, which moves left and right
    bool vertical;   ///< there is one at the right
    bool operator==(const WindowFit&) const = default;
};

/// The largest page in `room`, from which scroll bars take their thickness: `bars.height` below, `bars.width` at the
/// right. A bar in one direction may call for one in the other.
[[nodiscard]] WindowFit fitInto(const PixelSize& content, const PixelSize& room, const PixelSize& bars);

/// The scroll position nearest to `wanted` of a content of that length, of which `page` shows at a time.
[[nodiscard]] int scrollPosition(int wanted, int content, int page);

/// How far to scroll from `position` so that what lies from `from` to `to` of the content shows, with `margin` around
/// it where there is room; its beginning, when it is longer than a page. Not at all when it shows already.
[[nodiscard]] int scrollToShow(int position, int page, int from, int to, int margin);

} // namespace torvane
