#pragma once

#include "ui/owned.h"

namespace torvane {

/// What a window has to paint, put together out of sight, so that it reaches the screen in one transfer. `screen` is
/// the context of WM_PAINT; where the window is scrolled, its origin is, and the buffer holds what lies before it, too.
class BackBuffer {
  public:
    explicit BackBuffer(HDC screen)
        : screen_(screen), area_(areaToPaint(screen)), memory_(CreateCompatibleDC(screen)),
          bitmap_(CreateCompatibleBitmap(screen, area_.right, area_.bottom)), selected_(memory_.get(), bitmap_.get()) {}

    /// False when the system has no room for it; then there is nothing to draw into.
    [[nodiscard]] bool isUsable() const { return memory_ && bitmap_; }
    [[nodiscard]] HDC context() const { return memory_.get(); }

    void fill(COLORREF colour) const {
        const UniqueBrush brush{CreateSolidBrush(colour)};
        FillRect(memory_.get(), &area_, brush.get());
    }

    /// Seen when this returns, not with the thread's next batch of drawing.
    void show() const {
        BitBlt(screen_, 0, 0, area_.right, area_.bottom, memory_.get(), 0, 0, SRCCOPY);
        GdiFlush();
    }

  private:
    static RECT areaToPaint(HDC screen) {
        RECT area{};
        GetClipBox(screen, &area);
        return {0, 0, area.right, area.bottom};
    }

    HDC screen_;
    RECT area_;
    UniqueMemoryDc memory_;
    UniqueBitmap bitmap_;
    SelectedObject selected_;
};

} // namespace torvane
