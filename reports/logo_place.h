#pragma once

namespace torvane {

/// A place on the page. Points: `left` from its left edge, `top` from its upper one.
struct LogoPlace {
    float left = 0;
    float top = 0;
    float width = 0;
    float height = 0;
};

/// Where a logo of that many pixels stands: in the upper right corner, above the first section's icon, as large as its
/// shape lets it be there, but no larger than one pixel a point. Both numbers are at least 1.
[[nodiscard]] LogoPlace placeLogo(int width, int height);

} // namespace torvane
