#include "ui/picture_drawing.h"

namespace torvane {

namespace {

PixelSize sizeOf(Gdiplus::Image& picture) {
    return {static_cast<int>(picture.GetWidth()), static_cast<int>(picture.GetHeight())};
}

void drawResized(Gdiplus::Graphics& graphics, Gdiplus::Image& picture, const Gdiplus::Rect& place) {
    const PixelSize size = sizeOf(picture);
    const Gdiplus::GraphicsState before = graphics.Save();
    graphics.SetInterpolationMode(Gdiplus::InterpolationModeHighQualityBicubic);
    graphics.SetPixelOffsetMode(Gdiplus::PixelOffsetModeHighQuality);
    // Beyond its edge the picture is taken for its mirror image; else the edge would blend with nothing and turn pale.
    Gdiplus::ImageAttributes attributes;
    attributes.SetWrapMode(Gdiplus::WrapModeTileFlipXY);
    graphics.DrawImage(&picture, place, 0, 0, size.width, size.height, Gdiplus::UnitPixel, &attributes);
    graphics.Restore(before);
}

} // namespace

PixelSize shownSize(Gdiplus::Image& picture, int madeFor, Scale scale) {
    const PixelSize size = sizeOf(picture);
    return {MulDiv(size.width, scale.dpi, madeFor), MulDiv(size.height, scale.dpi, madeFor)};
}

void drawPicture(Gdiplus::Graphics& graphics, Gdiplus::Image& picture, int x, int y, PixelSize size) {
    if (size == sizeOf(picture)) {
        // With a size, because without one GDI+ scales by the picture's resolution.
        graphics.DrawImage(&picture, x, y, size.width, size.height);
    } else {
        drawResized(graphics, picture, {x, y, size.width, size.height});
    }
}

} // namespace torvane
