#pragma once

namespace torvane {

/// A rectangle in pixels; right and bottom lie outside it.
struct PixelRect {
    int left;
    int top;
    int right;
    int bottom;

    [[nodiscard]] constexpr int width() const { return right - left; }
    [[nodiscard]] constexpr int height() const { return bottom - top; }
    bool operator==(const PixelRect&) const = default;
};

struct PixelSize {
    int width;
    int height;
    bool operator==(const PixelSize&) const = default;
};

/// From lengths at 96 dots to the inch, in which windows are designed, to a screen's pixels, and back. At 96 dots
/// nothing changes. Rounded to the nearest, halves away from zero, as the system's MulDiv does.
struct Scale {
    static constexpr int kDesignDpi = 96;

    int dpi = kDesignDpi;

    [[nodiscard]] constexpr int px(int at96) const { return rounded(at96, dpi, kDesignDpi); }
    /// Edge by edge, so that what touches or keeps apart at 96 dots does so here.
    [[nodiscard]] constexpr PixelRect px(const PixelRect& at96) const {
        return {px(at96.left), px(at96.top), px(at96.right), px(at96.bottom)};
    }
    [[nodiscard]] constexpr PixelSize px(const PixelSize& at96) const { return {px(at96.width), px(at96.height)}; }

    /// The length at 96 dots that `pixels` show, such as a place of the mouse.
    [[nodiscard]] constexpr int at96(int pixels) const { return rounded(pixels, kDesignDpi, dpi); }
    [[nodiscard]] constexpr PixelRect at96(const PixelRect& pixels) const {
        return {at96(pixels.left), at96(pixels.top), at96(pixels.right), at96(pixels.bottom)};
    }
    [[nodiscard]] constexpr PixelSize at96(const PixelSize& pixels) const {
        return {at96(pixels.width), at96(pixels.height)};
    }

    bool operator==(const Scale&) const = default;

  private:
    static constexpr int rounded(int value, int times, int over) {
        const long long doubled = 2LL * value * times;
        return static_cast<int>((doubled + (value < 0 ? -over : over)) / (2LL * over));
    }
};

} // namespace torvane
