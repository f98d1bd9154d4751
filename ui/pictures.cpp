#include "ui/pictures.h"

#include "base/stdio_file.h"
#include "ui/embedded_picture.h"
#include "ui/picture_choice.h"
#include "ui/picture_drawing.h"
#include "ui/shipped_pictures.h"

#include <string>

namespace torvane {

namespace {

std::unique_ptr<Gdiplus::Image> imageFile(std::string_view name) {
    const std::wstring fileName(name.begin(), name.end());
    auto image = std::make_unique<Gdiplus::Image>(fileName.c_str());
    return image->GetLastStatus() == Gdiplus::Ok ? std::move(image) : nullptr;
}

} // namespace

Pictures::Pictures(Scale scale) : scale_(scale) {}
Pictures::~Pictures() = default;

void Pictures::load(std::string_view name) {
    loaded(name);
}

Pictures::Picture& Pictures::loaded(std::string_view name) {
    const auto [entry, isNew] = pictures_.try_emplace(name);
    if (isNew) {
        entry->second = read(name);
    }
    return entry->second;
}

Pictures::Picture Pictures::read(std::string_view name) const {
    // At 96 dots the files are shown whatever they are, so there is nothing to ask.
    if (renderingFor(scale_.dpi)) {
        if (const auto dpi =
                renderingInstead(name, readSmallFile(std::string(name).c_str()), shippedPictures(), scale_.dpi)) {
            return {embeddedRendering(name, *dpi), *dpi};
        }
    }
    return {imageFile(name)};
}

void Pictures::draw(Gdiplus::Graphics& graphics, std::string_view name, int x, int y) {
    const Picture& picture = loaded(name);
    if (picture.image) {
        const PixelSize size = shownSize(*picture.image, picture.madeFor, scale_);
        drawPicture(graphics, *picture.image, scale_.px(x), scale_.px(y), size);
    }
}

} // namespace torvane
