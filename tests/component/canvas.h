#pragma once

#include "tests/component/package_folder.h"
#include "tests/ui/driver/resource_counts.h"
#include "ui/owned.h"

#include <gtest/gtest.h>

#include <objidl.h>

#include <gdiplus.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace torvane::testing {

/// What a canvas shows at one moment.
struct Painting {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels; ///< top row first

    [[nodiscard]] COLORREF at(int x, int y) const {
        const std::uint32_t pixel =
            pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
        return RGB((pixel >> 16) & 0xFF, (pixel >> 8) & 0xFF, pixel & 0xFF);
    }
    bool operator==(const Painting&) const = default;
};

/// Something to paint on whose pixels can be read.
class Canvas {
  public:
    Canvas(int width, int height) : width_(width), height_(height), context_(CreateCompatibleDC(nullptr)) {
        BITMAPINFO info{};
        info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* bits = nullptr;
        bitmap_.reset(CreateDIBSection(context_.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
        pixels_ = static_cast<const std::uint32_t*>(bits);
        selected_.emplace(context_.get(), bitmap_.get());
    }

    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }
    [[nodiscard]] HDC context() const { return context_.get(); }
    [[nodiscard]] COLORREF at(int x, int y) const {
        GdiFlush();
        const std::uint32_t pixel = pixels_[y * width_ + x];
        return RGB((pixel >> 16) & 0xFF, (pixel >> 8) & 0xFF, pixel & 0xFF);
    }

    /// All pixels, top row first.
    [[nodiscard]] std::vector<std::uint32_t> pixels() const {
        GdiFlush();
        return {pixels_, pixels_ + static_cast<std::ptrdiff_t>(width_) * height_};
    }

    [[nodiscard]] Painting painting() const { return {width_, height_, pixels()}; }

    void fill(COLORREF colour) const {
        const UniqueBrush brush{CreateSolidBrush(colour)};
        const RECT all{0, 0, width_, height_};
        FillRect(context_.get(), &all, brush.get());
    }

    /// Draws the picture pixel for pixel; its size.
    SIZE draw(const std::wstring& picture, int x, int y) const {
        Gdiplus::Bitmap image(picture.c_str());
        EXPECT_EQ(image.GetLastStatus(), Gdiplus::Ok);
        const int width = static_cast<int>(image.GetWidth());
        const int height = static_cast<int>(image.GetHeight());
        Gdiplus::Graphics(context_.get()).DrawImage(&image, x, y, width, height);
        return {width, height};
    }

  private:
    int width_;
    int height_;
    UniqueMemoryDc context_;
    UniqueBitmap bitmap_;
    const std::uint32_t* pixels_ = nullptr;
    std::optional<SelectedObject> selected_;
};

/// Copies the pictures that the program is shipped with into the current folder.
inline void layOutPictures() {
    for (const auto& entry : std::filesystem::directory_iterator(packageFolder())) {
        if (entry.path().extension() == ".png") {
            std::filesystem::copy(entry.path(), entry.path().filename());
        }
    }
    ASSERT_TRUE(std::filesystem::exists("sw-gauge-small.png")) << "no artwork in " << packageFolder();
}

[[nodiscard]] inline int gdiObjectCount() {
    return driver::countResources(GetCurrentProcessId()).gdiObjects;
}

} // namespace torvane::testing
