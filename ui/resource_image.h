#pragma once

#include <windows.h>

#include <memory>

namespace Gdiplus {
class Bitmap;
}

namespace torvane {

/// A picture (PNG) that the program carries as an RCDATA resource. GDI+ must be running for as long as it lives.
class ResourceImage {
  public:
    /// Takes the resource; an unreadable one gives an empty picture of no size.
    explicit ResourceImage(int resourceId);
    ~ResourceImage();
    ResourceImage(const ResourceImage&) = delete;
    ResourceImage& operator=(const ResourceImage&) = delete;

    [[nodiscard]] int width() const;
    [[nodiscard]] int height() const;

    /// Draws the picture pixel for pixel with its top left corner at (x, y).
    void draw(HDC context, int x, int y) const;

  private:
    std::unique_ptr<Gdiplus::Bitmap> image_;
};

} // namespace torvane
