#pragma once

#include <map>
#include <memory>
#include <string_view>

namespace Gdiplus {
class Graphics;
class Image;
} // namespace Gdiplus

namespace torvane {

/// The pictures of one paint: each is loaded from the current folder once and released with this object. GDI+ must be
/// running.
class Pictures {
  public:
    Pictures();
    ~Pictures();
    Pictures(const Pictures&) = delete;
    Pictures& operator=(const Pictures&) = delete;

    /// Null when the file is missing or no picture. Names are kept as views: they must outlive this object.
    Gdiplus::Image* load(std::string_view name);

    /// Draws the picture pixel for pixel, its top left corner at (x, y). Nothing is drawn when it cannot be loaded.
    void draw(Gdiplus::Graphics& graphics, std::string_view name, int x, int y);

  private:
    std::map<std::string_view, std::unique_ptr<Gdiplus::Image>> images_;
};

} // namespace torvane
