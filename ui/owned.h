#pragma once

#include "base/owned_handle.h"

#include <windows.h>

namespace torvane {

/// Brushes, fonts, bitmaps. A system brush or stock object may be owned too: deleting it does nothing.
template <typename Object>
struct GdiObjectTraits {
    using Value = Object;
    static Value empty() { return nullptr; }
    static void close(Value object) { DeleteObject(object); }
};
using UniqueBrush = Owned<GdiObjectTraits<HBRUSH>>;
using UniqueFont = Owned<GdiObjectTraits<HFONT>>;
using UniqueBitmap = Owned<GdiObjectTraits<HBITMAP>>;

/// A device context of CreateCompatibleDC.
struct MemoryDcTraits {
    using Value = HDC;
    static Value empty() { return nullptr; }
    static void close(Value context) { DeleteDC(context); }
};
using UniqueMemoryDc = Owned<MemoryDcTraits>;

/// A menu that no window has.
struct MenuTraits {
    using Value = HMENU;
    static Value empty() { return nullptr; }
    static void close(Value menu) { DestroyMenu(menu); }
};
using UniqueMenu = Owned<MenuTraits>;

/// An icon of the program's own, not one that the system shares.
struct IconTraits {
    using Value = HICON;
    static Value empty() { return nullptr; }
    static void close(Value icon) { DestroyIcon(icon); }
};
using UniqueIcon = Owned<IconTraits>;

/// Selects an object into a device context for a scope, then puts the old one back. Declare it after the object's own
/// guard: a selected object cannot be deleted.
class SelectedObject {
  public:
    SelectedObject(HDC context, HGDIOBJ object) : context_(context), previous_(SelectObject(context, object)) {}
    ~SelectedObject() { SelectObject(context_, previous_); }
    SelectedObject(const SelectedObject&) = delete;
    SelectedObject& operator=(const SelectedObject&) = delete;

  private:
    HDC context_;
    HGDIOBJ previous_;
};

/// The device context of one WM_PAINT.
class PaintDc {
  public:
    explicit PaintDc(HWND window) : window_(window), context_(BeginPaint(window, &paint_)) {}
    ~PaintDc() { EndPaint(window_, &paint_); }
    PaintDc(const PaintDc&) = delete;
    PaintDc& operator=(const PaintDc&) = delete;

    [[nodiscard]] HDC get() const { return context_; }

  private:
    HWND window_;
    PAINTSTRUCT paint_{};
    HDC context_;
};

} // namespace torvane
