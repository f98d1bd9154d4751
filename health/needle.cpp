#include "health/needle.h"

#include <cmath>

namespace torvane {

namespace {

// 3.14 / 180, not pi / 180: the scales on the dials' faces are drawn for it.
constexpr double kRadiansPerDegree = 0.017444444444444446;

// Within these values the needle is shorter, because the dial's face is shallower in its middle.
constexpr double kShallowFrom = 0.2;
constexpr double kShallowTo = 0.8;
constexpr double kShallowLength = 0.85;

} // namespace

PanelPoint NeedleEndPoint(double value, double length, PanelPoint pivot) {
    if (value >= 1.0) {
        value = 1.0;
    } else if (!std::isfinite(value)) {
        value = 0.0;
    }
    if (value >= kShallowFrom && value < kShallowTo) {
        length *= kShallowLength;
    }
    const double angle = 180.0 * value * kRadiansPerDegree;
    return {static_cast<int>(pivot.x - length * std::cos(angle)), static_cast<int>(pivot.y - length * std::sin(angle))};
}

} // namespace torvane
