#pragma once

#include "base/scale.h"

#include <windows.h>

#include <memory>
#include <string_view>

namespace Gdiplus {
class Bitmap;
}

namespace torvane {

/// A picture (PNG) that the program alone carries, in the size for a screen. GDI+ must be running for as long as it
/// lives.
class ResourceImage {
  public:
    /// Takes the RCDATA resource, which is for 96 dots to the inch, or on a finer screen the rendering of the picture
    /// `name`. An unreadable one gives an empty picture of no size.
    ResourceImage(int resourceId, std::string_view name, Scale scale);
    ~ResourceImage();
    ResourceImage(ResourceImage&&) noexcept;
    ResourceImage& operator=(ResourceImage&&) noexcept;

    /// As it is drawn.
    [[nodiscard]] PixelSize size() const { return size_; }

    /// Draws the picture with its top left corner at (x, y).
    void draw(HDC context, int x, int y) const;

  private:
    std::unique_ptr<Gdiplus::Bitmap> image_;
    PixelSize size_{};
};

} // namespace torvane
