#include "ui/resource_image.h"

#include "ui/embedded_picture.h"
#include "ui/picture_choice.h"
#include "ui/picture_drawing.h"

namespace torvane {

ResourceImage::ResourceImage(int resourceId, std::string_view name, Scale scale) {
    const auto rendering = renderingFor(scale.dpi);
    image_ = rendering ? embeddedRendering(name, *rendering) : embeddedPicture(resourceId);
    if (image_) {
        size_ = shownSize(*image_, rendering.value_or(Scale::kDesignDpi), scale);
    }
}

ResourceImage::~ResourceImage() = default;
ResourceImage::ResourceImage(ResourceImage&&) noexcept = default;
ResourceImage& ResourceImage::operator=(ResourceImage&&) noexcept = default;

void ResourceImage::draw(HDC context, int x, int y) const {
    if (!image_) {
        return;
    }
    Gdiplus::Graphics graphics(context);
    drawPicture(graphics, *image_, x, y, size_);
}

} // namespace torvane
