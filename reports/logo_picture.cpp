#include "reports/logo_picture.h"

#include "base/whole_file.h"

#include <png.h>

#include <memory>
#include <utility>

namespace torvane {

namespace {

constexpr std::uint64_t kMostBytes = 8ULL << 20;
constexpr png_uint_32 kMostPixels = 4000;

/// Frees what the library keeps of a picture that was begun.
struct PngImageDeleter {
    void operator()(png_image* image) const { png_image_free(image); }
};

LogoReading failure(std::string why) {
    return {.picture = std::nullopt, .error = std::move(why)};
}

LogoReading decode(const std::string& bytes) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    const std::unique_ptr<png_image, PngImageDeleter> begun(&image);
    if (png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) == 0) {
        return failure(image.message);
    }
    if (image.width > kMostPixels || image.height > kMostPixels) {
        return failure("it has more than 4,000 pixels in one direction");
    }
    image.format = PNG_FORMAT_RGB;
    LogoPicture picture{.width = static_cast<int>(image.width),
                        .height = static_cast<int>(image.height),
                        .pixels = std::vector<std::uint8_t>(PNG_IMAGE_SIZE(image))};
    constexpr png_color kPaper{255, 255, 255};
    if (png_image_finish_read(&image, &kPaper, picture.pixels.data(), 0, nullptr) == 0) {
        return failure(image.message);
    }
    return {.picture = std::move(picture), .error = {}};
}

} // namespace

LogoReading readLogo(const char* fileName) {
    if (!isFile(fileName)) {
        return {};
    }
    const std::optional<std::string> bytes = readFileUpTo(fileName, kMostBytes);
    return bytes ? decode(*bytes) : failure("it cannot be read, or has more than 8 MB");
}

} // namespace torvane
