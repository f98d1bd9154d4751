#include "ui/pictures.h"

#include "base/stdio_file.h"
#include "ui/embedded_picture.h"
#include "ui/picture_choice.h"
#include "ui/picture_drawing.h"
#include "ui/shipped_pictures.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace torvane {

namespace {

/// Empty when it cannot be read.
std::vector<std::uint8_t> bytesOf(std::string_view fileName) {
    std::vector<std::uint8_t> bytes;
    const StdioFile file = openStdioFile(std::string(fileName).c_str(), "rb");
    std::array<std::uint8_t, 16384> block{};
    while (const std::size_t read = file ? std::fread(block.data(), 1, block.size(), file.get()) : 0) {
        bytes.insert(bytes.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(read));
    }
    return bytes;
}

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
        if (const auto dpi = renderingInstead(name, bytesOf(name), shippedPictures(), scale_.dpi)) {
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
