#pragma once

#include <windows.h>

#include <utility>

namespace torvane {

/// Owns one system resource; `Traits` names its type, its empty value and how it is closed.
template <typename Traits>
class Owned {
  public:
    using Value = typename Traits::Value;

    Owned() = default;
    explicit Owned(Value value) : value_(value) {}
    Owned(Owned&& other) noexcept : value_(other.release()) {}
    Owned& operator=(Owned&& other) noexcept {
        if (this != &other) {
            reset(other.release());
        }
        return *this;
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    ~Owned() { reset(); }

    [[nodiscard]] explicit operator bool() const { return value_ != Traits::empty(); }
    [[nodiscard]] Value get() const { return value_; }

    [[nodiscard]] Value release() { return std::exchange(value_, Traits::empty()); }
    void reset(Value value = Traits::empty()) {
        if (value_ != Traits::empty()) {
            Traits::close(value_);
        }
        value_ = value;
    }

  private:
    Value value_ = Traits::empty();
};

/// Threads, processes, events: the functions that make them return null on failure.
struct HandleTraits {
    using Value = HANDLE;
    static Value empty() { return nullptr; }
    static void close(Value handle) { CloseHandle(handle); }
};
using UniqueHandle = Owned<HandleTraits>;

/// Files and devices: CreateFile returns INVALID_HANDLE_VALUE on failure.
struct FileTraits {
    using Value = HANDLE;
    static Value empty() { return INVALID_HANDLE_VALUE; } // NOLINT(performance-no-int-to-ptr): the system's own value
    static void close(Value handle) { CloseHandle(handle); }
};
using UniqueFile = Owned<FileTraits>;

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
