#pragma once

namespace torvane {

/// A position in the health panel, in pixels from its top left corner.
struct PanelPoint {
    int x = 0;
    int y = 0;

    friend bool operator==(const PanelPoint&, const PanelPoint&) = default;
};

/// Where a dial's needle ends: `value` 0.0 points left, 0.5 straight up, 1.0 and more right. `length` is in pixels; the
/// result is truncated to whole ones.
[[nodiscard]] PanelPoint NeedleEndPoint(double value, double length, PanelPoint pivot);

} // namespace torvane
