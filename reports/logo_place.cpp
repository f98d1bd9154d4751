#include "reports/logo_place.h"

#include <algorithm>

namespace torvane {

LogoPlace placeLogo(int width, int height) {
    constexpr float kRight = 575;
    constexpr float kTop = 12;
    constexpr float kWidestLogo = 150;
    constexpr float kHighestLogo = 80;
    const auto pixelsWide = static_cast<float>(width);
    const auto pixelsHigh = static_cast<float>(height);
    const float scale = std::min({1.0F, kWidestLogo / pixelsWide, kHighestLogo / pixelsHigh});
    return {
        .left = kRight - pixelsWide * scale, .top = kTop, .width = pixelsWide * scale, .height = pixelsHigh * scale};
}

} // namespace torvane
