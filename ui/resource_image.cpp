#include "ui/resource_image.h"

#include <objidl.h>
#include <shlwapi.h>

#include <gdiplus.h>

namespace torvane {

namespace {

struct ComReleaser {
    void operator()(IUnknown* object) const { object->Release(); }
};

// A stream over a copy of the resource; GDI+ keeps its own reference for as long as the picture needs it.
std::unique_ptr<IStream, ComReleaser> openResource(int resourceId) {
    const HRSRC resource = FindResourceA(nullptr, MAKEINTRESOURCEA(resourceId), RT_RCDATA);
    if (resource == nullptr) {
        return nullptr;
    }
    const HGLOBAL loaded = LoadResource(nullptr, resource);
    const void* const bytes = loaded != nullptr ? LockResource(loaded) : nullptr;
    if (bytes == nullptr) {
        return nullptr;
    }
    return std::unique_ptr<IStream, ComReleaser>{
        SHCreateMemStream(static_cast<const BYTE*>(bytes), SizeofResource(nullptr, resource))};
}

} // namespace

ResourceImage::ResourceImage(int resourceId) {
    const auto stream = openResource(resourceId);
    if (!stream) {
        return;
    }
    auto image = std::make_unique<Gdiplus::Bitmap>(stream.get());
    if (image->GetLastStatus() == Gdiplus::Ok) {
        image_ = std::move(image);
    }
}

ResourceImage::~ResourceImage() = default;

int ResourceImage::width() const {
    return image_ ? static_cast<int>(image_->GetWidth()) : 0;
}

int ResourceImage::height() const {
    return image_ ? static_cast<int>(image_->GetHeight()) : 0;
}

void ResourceImage::draw(HDC context, int x, int y) const {
    if (!image_) {
        return;
    }
    Gdiplus::Graphics graphics(context);
    // With a size, because without one GDI+ scales by the picture's resolution.
    graphics.DrawImage(image_.get(), x, y, width(), height());
}

} // namespace torvane
