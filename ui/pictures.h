#pragma once

#include "base/scale.h"

#include <map>
#include <memory>
#include <string_view>

namespace Gdiplus {
class Graphics;
class Image;
} // namespace Gdiplus

namespace torvane {

/// The pictures of one paint: each is loaded from the current folder once and released with this object. Where the
/// screen is finer than 96 dots to the inch, a file that is as it was shipped is replaced by the rendering that the
/// program carries for it (ui/picture_choice.h). GDI+ must be running.
class Pictures {
  public:
    explicit Pictures(Scale scale);
    ~Pictures();
    Pictures(const Pictures&) = delete;
    Pictures& operator=(const Pictures&) = delete;

    /// Loads the picture, if it is not loaded yet. Names are kept as views: they must outlive this object.
    void load(std::string_view name);

    /// Draws the picture, its top left corner at (x, y), a place at 96 dots to the inch: pixel for pixel there, scaled
    /// elsewhere. Nothing is drawn when the file is missing or no picture.
    void draw(Gdiplus::Graphics& graphics, std::string_view name, int x, int y);

  private:
    struct Picture {
        std::unique_ptr<Gdiplus::Image> image; ///< null: cannot be shown
        int madeFor = Scale::kDesignDpi;
    };

    [[nodiscard]] Picture read(std::string_view name) const;
    Picture& loaded(std::string_view name);

    Scale scale_;
    std::map<std::string_view, Picture> pictures_;
};

} // namespace torvane
