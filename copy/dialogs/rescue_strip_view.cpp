#include "copy/dialogs/rescue_strip_view.h"

#include "base/wide_text.h"
#include "ui/back_buffer.h"
#include "ui/colour_scheme.h"

#include <algorithm>
#include <array>
#include <string>

namespace torvane {

namespace {

constexpr COLORREF kFrame = RGB(90, 90, 90);
constexpr COLORREF kPaper = RGB(255, 255, 255);

UniqueBrush brushOf(const RescueKeyEntry& entry) {
    switch (entry.pattern) {
    case RescuePattern::kSolid:
        break;
    case RescuePattern::kEmpty:
        return UniqueBrush{CreateSolidBrush(kPaper)};
    case RescuePattern::kSlanted:
        return UniqueBrush{CreateHatchBrush(HS_BDIAGONAL, entry.colour)};
    case RescuePattern::kCrossed:
        return UniqueBrush{CreateHatchBrush(HS_DIAGCROSS, entry.colour)};
    }
    return UniqueBrush{CreateSolidBrush(entry.colour)};
}

using KeyBrushes = std::array<UniqueBrush, kRescueKey.size()>;

KeyBrushes makeBrushes() {
    KeyBrushes brushes;
    for (std::size_t i = 0; i < brushes.size(); ++i) {
        brushes[i] = brushOf(kRescueKey[i]);
    }
    return brushes;
}

RECT rectOf(const PixelRect& place) {
    return {place.left, place.top, place.right, place.bottom};
}

/// Pixels at 96 to the inch.
PixelRect placeOf(const RescueBar& bar) {
    const int left = kRescueStrip.left + bar.left;
    const int top = kRescueStrip.top + bar.top;
    return {left, top, left + bar.width, top + bar.height};
}

class StripPainter {
  public:
    StripPainter(HDC context, Scale scale) : context_(context), scale_(scale), brushes_(makeBrushes()) {
        SetBkColor(context, kPaper); // between a pattern's lines
    }

    void fill(const PixelRect& place, std::size_t entry) const {
        const RECT pixels = rectOf(scale_.px(place));
        FillRect(context_, &pixels, brushes_[entry].get());
    }

    /// A pattern of lines does not show in a column or two: such a loss is a mark in its colour, over its neighbours.
    void markNarrowLoss(const RescueBar& bar) const {
        constexpr int kNarrow = 3;
        const RescueKeyEntry& entry = kRescueKey[static_cast<std::size_t>(bar.shade)];
        if (bar.width >= kNarrow || entry.pattern == RescuePattern::kSolid || entry.pattern == RescuePattern::kEmpty) {
            return;
        }
        PixelRect place = placeOf(bar);
        place.right = std::min(place.left + kNarrow, kRescueStrip.right);
        const UniqueBrush brush{CreateSolidBrush(entry.colour)};
        const RECT pixels = rectOf(scale_.px(place));
        FillRect(context_, &pixels, brush.get());
    }

    void frame(const PixelRect& place) const {
        const UniqueBrush brush{CreateSolidBrush(kFrame)};
        const RECT pixels = rectOf(scale_.px(place));
        FrameRect(context_, &pixels, brush.get());
    }

    void paintStrip(const std::optional<RescueShown>& shown) const {
        fill(kRescueStrip, static_cast<std::size_t>(RescueShade::kUntried));
        if (shown) {
            for (const RescueBar& bar : shown->picture.bars) {
                fill(placeOf(bar), static_cast<std::size_t>(bar.shade));
            }
            for (const RescueBar& bar : shown->picture.bars) {
                markNarrowLoss(bar);
            }
            if (shown->picture.now) {
                const int now = kRescueStrip.left + *shown->picture.now;
                fill({now, kRescueStrip.top - 4, now + 2, kRescueStrip.bottom + 4}, kNow);
            }
        }
        frame(kRescueStrip);
    }

    void paintKey(HFONT font) const {
        const SelectedObject selected(context_, font);
        SetTextColor(context_, dialogText());
        SetBkMode(context_, TRANSPARENT);
        constexpr int kEntryWidth = 90;
        for (std::size_t i = 0; i < kRescueKey.size(); ++i) {
            const int left = kRescueKeyPlace.left + static_cast<int>(i) * kEntryWidth;
            const bool isLine = i == kNow;
            const PixelRect sample{left + (isLine ? 8 : 0), kRescueKeyPlace.top + 1, left + (isLine ? 10 : 18),
                                   kRescueKeyPlace.bottom - 1};
            fill(sample, i);
            if (!isLine) {
                frame(sample);
            }
            const std::wstring text = wideText(kRescueKey[i].text);
            RECT place = rectOf(
                scale_.px(PixelRect{left + 24, kRescueKeyPlace.top, left + kEntryWidth, kRescueKeyPlace.bottom}));
            DrawTextW(context_, text.c_str(), -1, &place, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
        }
    }

  private:
    static constexpr std::size_t kNow = kRescueShadeCount; ///< the key's last entry

    HDC context_;
    Scale scale_;
    KeyBrushes brushes_;
};

} // namespace

void paintRescueStrip(HDC paintContext, const std::optional<RescueShown>& shown, HFONT font, Scale scale) {
    const BackBuffer buffer(paintContext);
    if (!buffer.isUsable()) {
        return;
    }
    buffer.fill(dialogGround());
    const StripPainter painter(buffer.context(), scale);
    painter.paintStrip(shown);
    painter.paintKey(font);
    buffer.show();
}

} // namespace torvane
