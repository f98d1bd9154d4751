#include "ui/picture_choice.h"

#include "base/checksum.h"
#include "base/scale.h"

#include <algorithm>

namespace torvane {

namespace {

bool isAsShipped(std::string_view name, ByteView file, std::span<const ShippedPicture> shipped) {
    const auto known = std::ranges::find(shipped, name, &ShippedPicture::name);
    return known != shipped.end() && known->size == file.size() && known->checksum == crc32(file);
}

} // namespace

std::optional<int> renderingFor(int dpi) {
    if (dpi <= Scale::kDesignDpi) {
        return std::nullopt;
    }
    const auto* const largeEnough = std::ranges::lower_bound(kRenderingDpis, dpi);
    return largeEnough != kRenderingDpis.end() ? *largeEnough : kRenderingDpis.back();
}

std::optional<int> renderingInstead(std::string_view name, ByteView file, std::span<const ShippedPicture> shipped,
                                    int dpi) {
    const std::optional<int> rendering = renderingFor(dpi);
    return rendering && isAsShipped(name, file, shipped) ? rendering : std::nullopt;
}

} // namespace torvane
