#include "ui/pictures.h"

#include <windows.h>

#include <objidl.h>

#include <gdiplus.h>

#include <string>

namespace torvane {

Pictures::Pictures() = default;
Pictures::~Pictures() = default;

Gdiplus::Image* Pictures::load(std::string_view name) {
    const auto [entry, isNew] = images_.try_emplace(name);
    if (isNew) {
        const std::wstring fileName(name.begin(), name.end());
        auto image = std::make_unique<Gdiplus::Image>(fileName.c_str());
        if (image->GetLastStatus() == Gdiplus::Ok) {
            entry->second = std::move(image);
        }
    }
    return entry->second.get();
}

void Pictures::draw(Gdiplus::Graphics& graphics, std::string_view name, int x, int y) {
    if (Gdiplus::Image* const image = load(name)) {
        // With a size, because without one GDI+ scales by the picture's resolution.
        graphics.DrawImage(image, x, y, static_cast<int>(image->GetWidth()), static_cast<int>(image->GetHeight()));
    }
}

} // namespace torvane
