#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace torvane::driver {

/// A window of another process: a view of its handle, cheap to copy. Questions and messages go through a time-out, so
/// that a program which hangs fails the test instead of stopping it.
class Window {
  public:
    Window() = default;
    explicit Window(HWND handle) : handle_(handle) {}

    [[nodiscard]] HWND handle() const { return handle_; }
    [[nodiscard]] bool exists() const { return handle_ != nullptr && IsWindow(handle_) != FALSE; }
    [[nodiscard]] bool visible() const { return exists() && IsWindowVisible(handle_) != FALSE; }
    /// False also when a window around it is disabled, as under a message box.
    [[nodiscard]] bool enabled() const;

    [[nodiscard]] std::string text() const;
    [[nodiscard]] std::string className() const;
    [[nodiscard]] int id() const { return GetDlgCtrlID(handle_); }
    [[nodiscard]] DWORD processId() const;
    [[nodiscard]] LONG_PTR style() const { return GetWindowLongPtrW(handle_, GWL_STYLE); }

    [[nodiscard]] RECT rect() const;       ///< screen pixels
    [[nodiscard]] RECT clientRect() const; ///< screen pixels
    /// The rectangle in pixels of `parent`'s client area.
    [[nodiscard]] RECT rectIn(const Window& parent) const;

    /// The direct child with that control id; throws when there is none.
    [[nodiscard]] Window child(int id) const;
    [[nodiscard]] bool hasChild(int id) const { return GetDlgItem(handle_, id) != nullptr; }
    /// Direct children from the top of the z-order, which in a dialog is the tab order.
    [[nodiscard]] std::vector<Window> children() const;

    /// The answer to a message; throws when the program does not answer.
    LRESULT send(UINT message, WPARAM wParam = 0,
                 LPARAM lParam = 0) const;                               // NOLINT(bugprone-easily-swappable-parameters)
    void post(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const; // NOLINT(bugprone-easily-swappable-parameters)

    /// Returns when the window's thread has dealt with all input that was waiting for it. A modal box that the input
    /// opened counts as dealt with.
    void settle() const;

    /// Returns when everything in the window has been painted.
    void awaitPainted() const;

    /// "class 'text' id=.. rect hidden/disabled", for failure texts.
    [[nodiscard]] std::string describe() const;

    friend bool operator==(const Window& left, const Window& right) { return left.handle_ == right.handle_; }

  private:
    HWND handle_ = nullptr;
};

/// The size that a button needs to show its whole text.
[[nodiscard]] SIZE idealButtonSize(const Window& button);

/// Top-level windows of a process, visible or not, from the top of the z-order.
[[nodiscard]] std::vector<Window> topLevelWindows(DWORD processId);

/// Visible windows of a process with their visible children, one per line, for failure texts.
[[nodiscard]] std::string describeWindows(DWORD processId);

[[nodiscard]] inline LONG width(const RECT& rect) {
    return rect.right - rect.left;
}
[[nodiscard]] inline LONG height(const RECT& rect) {
    return rect.bottom - rect.top;
}
[[nodiscard]] inline POINT centre(const RECT& rect) {
    return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
}
[[nodiscard]] bool overlap(const RECT& left, const RECT& right);
[[nodiscard]] bool inside(const RECT& inner, const RECT& outer);
[[nodiscard]] std::string toText(const RECT& rect);

} // namespace torvane::driver
