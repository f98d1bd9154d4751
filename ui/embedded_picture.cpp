#include "ui/embedded_picture.h"

#include "ui/embedded_text.h"

#include <shlwapi.h>

#include <string>

namespace torvane {

namespace {

struct ComReleaser {
    void operator()(IUnknown* object) const { object->Release(); }
};

// A stream over a copy of the resource; GDI+ keeps its own reference for as long as the picture needs it.
std::unique_ptr<IStream, ComReleaser> open(HRSRC resource) {
    const std::string_view bytes = resourceBytes(resource);
    if (bytes.empty()) {
        return nullptr;
    }
    return std::unique_ptr<IStream, ComReleaser>{
        SHCreateMemStream(reinterpret_cast<const BYTE*>(bytes.data()), static_cast<UINT>(bytes.size()))};
}

std::unique_ptr<Gdiplus::Bitmap> load(HRSRC resource) {
    const auto stream = open(resource);
    if (!stream) {
        return nullptr;
    }
    auto picture = std::make_unique<Gdiplus::Bitmap>(stream.get());
    return picture->GetLastStatus() == Gdiplus::Ok ? std::move(picture) : nullptr;
}

} // namespace

std::unique_ptr<Gdiplus::Bitmap> embeddedPicture(int resourceId) {
    return load(FindResourceA(nullptr, MAKEINTRESOURCEA(resourceId), RT_RCDATA));
}

std::unique_ptr<Gdiplus::Bitmap> embeddedRendering(std::string_view name, int dpi) {
    const std::string type = "RENDERING" + std::to_string(dpi);
    return load(FindResourceA(nullptr, std::string(name).c_str(), type.c_str()));
}

} // namespace torvane
