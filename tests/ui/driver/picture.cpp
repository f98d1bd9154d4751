#include "tests/ui/driver/picture.h"

#include "tests/ui/driver/text.h"
#include "tests/ui/driver/wait.h"

#include <objidl.h>

#include <gdiplus.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>
#include <utility>

namespace torvane::driver {
namespace {

/// A device context with a 32-bit bitmap selected whose pixels are ours to read.
class Canvas {
  public:
    Canvas(int width, int height) : context_(CreateCompatibleDC(nullptr)) {
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = width;
        info.bmiHeader.biHeight = -height; // top row first
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        void* bits = nullptr;
        bitmap_ = CreateDIBSection(context_, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
        if (bitmap_ == nullptr) {
            DeleteDC(context_);
            throw Failure("no memory for a picture");
        }
        pixels_ = static_cast<DWORD*>(bits);
        previous_ = SelectObject(context_, bitmap_);
    }
    ~Canvas() {
        SelectObject(context_, previous_);
        DeleteObject(bitmap_);
        DeleteDC(context_);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    [[nodiscard]] HDC context() const { return context_; }
    [[nodiscard]] DWORD* pixels() const {
        GdiFlush();
        return pixels_;
    }

  private:
    HDC context_;
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ previous_ = nullptr;
    DWORD* pixels_ = nullptr;
};

/// GDI+ for the length of a scope; declare it before what uses it.
class GdiPlus {
  public:
    GdiPlus() {
        const Gdiplus::GdiplusStartupInput input;
        if (Gdiplus::GdiplusStartup(&token_, &input, nullptr) != Gdiplus::Ok) {
            throw Failure("GDI+ does not start");
        }
    }
    ~GdiPlus() { Gdiplus::GdiplusShutdown(token_); }
    GdiPlus(const GdiPlus&) = delete;
    GdiPlus& operator=(const GdiPlus&) = delete;

  private:
    ULONG_PTR token_ = 0;
};

DWORD toPixel(COLORREF colour) {
    return static_cast<DWORD>(GetRValue(colour) << 16 | GetGValue(colour) << 8 | GetBValue(colour));
}

COLORREF toColour(DWORD pixel) {
    return RGB((pixel >> 16) & 0xFF, (pixel >> 8) & 0xFF, pixel & 0xFF);
}

/// The encoder {557CF406-1A04-11D3-9A73-0000F81EF32E} that comes with GDI+ for PNG.
constexpr CLSID kPngEncoder{0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

} // namespace

Picture::Picture(int width, int height, COLORREF colour)
    : width_(width), height_(height),
      pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), toPixel(colour)) {}

Picture Picture::ofScreen(const RECT& rect) {
    Picture picture(std::max<int>(rect.right - rect.left, 1), std::max<int>(rect.bottom - rect.top, 1), 0);
    const Canvas canvas(picture.width_, picture.height_);
    const HDC screen = GetDC(nullptr);
    const BOOL copied =
        BitBlt(canvas.context(), 0, 0, picture.width_, picture.height_, screen, rect.left, rect.top, SRCCOPY);
    ReleaseDC(nullptr, screen);
    if (copied == FALSE) {
        throw Failure("the screen cannot be copied");
    }
    std::transform(canvas.pixels(), canvas.pixels() + picture.pixels_.size(), picture.pixels_.begin(),
                   [](DWORD pixel) { return pixel & 0x00FFFFFF; });
    return picture;
}

Picture Picture::atRest(const RECT& rect) {
    constexpr std::chrono::milliseconds kStill{200};
    Picture picture = ofScreen(rect);
    auto since = std::chrono::steady_clock::now();
    await("the screen has come to rest", [&] {
        Picture now = ofScreen(rect);
        if (now != picture) {
            picture = std::move(now);
            since = std::chrono::steady_clock::now();
        }
        return std::chrono::steady_clock::now() - since >= kStill;
    });
    return picture;
}

COLORREF Picture::at(int x, int y) const {
    return toColour(
        pixels_.at(static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x)));
}

COLORREF Picture::commonest() const {
    std::map<DWORD, int> counts;
    for (const DWORD pixel : pixels_) {
        ++counts[pixel];
    }
    const auto most = std::max_element(counts.begin(), counts.end(),
                                       [](const auto& left, const auto& right) { return left.second < right.second; });
    return toColour(most->first);
}

int Picture::count(COLORREF colour) const {
    return static_cast<int>(std::count(pixels_.begin(), pixels_.end(), toPixel(colour)));
}

template <typename Paint>
void Picture::paint(Paint&& onto) {
    const Canvas canvas(width_, height_);
    std::copy(pixels_.begin(), pixels_.end(), canvas.pixels());
    onto(canvas.context());
    std::transform(canvas.pixels(), canvas.pixels() + pixels_.size(), pixels_.begin(),
                   [](DWORD pixel) { return pixel & 0x00FFFFFF; });
}

void Picture::drawIcon(HICON icon, int x, int y) {
    paint([&](HDC context) { DrawIconEx(context, x, y, icon, 0, 0, 0, nullptr, DI_NORMAL); });
}

void Picture::writeCentred(const std::string& text, const char* font, int height, int weight) {
    const HFONT handle = CreateFontA(height, 0, 0, 0, weight, FALSE, FALSE, FALSE, ANSI_CHARSET, OUT_DEFAULT_PRECIS,
                                     CLIP_DEFAULT_PRECIS, PROOF_QUALITY, DEFAULT_PITCH | FF_DONTCARE, font);
    paint([&](HDC context) {
        const HGDIOBJ previous = SelectObject(context, handle);
        SetBkMode(context, TRANSPARENT);
        RECT whole{0, 0, width_, height_};
        DrawTextA(context, text.c_str(), -1, &whole, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
        SelectObject(context, previous);
    });
    DeleteObject(handle);
}

void Picture::draw(const Picture& other, int x, int y) {
    const int left = std::max(x, 0);
    const int columns = std::min(x + other.width_, width_) - left;
    for (int row = std::max(y, 0); row < std::min(y + other.height_, height_); ++row) {
        const auto from = other.pixels_.begin() + static_cast<std::ptrdiff_t>(row - y) * other.width_ + (left - x);
        std::copy_n(from, std::max(columns, 0), pixels_.begin() + static_cast<std::ptrdiff_t>(row) * width_ + left);
    }
}

Picture Picture::ofFile(const std::string& path, COLORREF background) {
    const GdiPlus running;
    Gdiplus::Bitmap image(toWide(path).c_str());
    if (image.GetLastStatus() != Gdiplus::Ok) {
        throw Failure("cannot read " + path);
    }
    const int width = static_cast<int>(image.GetWidth());
    const int height = static_cast<int>(image.GetHeight());
    Picture picture(width, height, background);
    picture.paint([&](HDC context) { Gdiplus::Graphics(context).DrawImage(&image, 0, 0, width, height); });
    return picture;
}

void Picture::save(const std::string& path) const {
    std::filesystem::create_directories(std::filesystem::path(toWide(path)).parent_path());
    const GdiPlus running;
    auto copy = pixels_;
    Gdiplus::Bitmap bitmap(width_, height_, width_ * 4, PixelFormat32bppRGB, reinterpret_cast<BYTE*>(copy.data()));
    if (bitmap.Save(toWide(path).c_str(), &kPngEncoder, nullptr) != Gdiplus::Ok) {
        throw Failure("cannot write " + path);
    }
}

std::string toText(COLORREF colour) {
    std::ostringstream text;
    text << 'R' << int{GetRValue(colour)} << " G" << int{GetGValue(colour)} << " B" << int{GetBValue(colour)};
    return text.str();
}

int distance(COLORREF left, COLORREF right) {
    return std::abs(GetRValue(left) - GetRValue(right)) + std::abs(GetGValue(left) - GetGValue(right)) +
           std::abs(GetBValue(left) - GetBValue(right));
}

} // namespace torvane::driver
