#pragma once

#include <windows.h>

#include <string>

namespace torvane {

/// Control id of the button.
inline constexpr int kLeaveWaitingId = 7500;

/// The strip across the middle of a window that says who is waited for, with a button to leave. It belongs to that
/// window: it is no window of its own on the screen.
class WaitingStrip {
  public:
    WaitingStrip() = default;
    ~WaitingStrip() { hide(); }
    WaitingStrip(const WaitingStrip&) = delete;
    WaitingStrip& operator=(const WaitingStrip&) = delete;

    /// Shows the strip, with the keyboard in its button, and says "Waiting for PowerShell, 2 s", and that other
    /// commands do nothing meanwhile.
    void show(HWND over, const std::string& what);
    void setSeconds(int seconds);
    /// Gives the keyboard back to who had it.
    void hide();

    [[nodiscard]] bool visible() const { return strip_ != nullptr; }
    /// True once the button was pressed.
    [[nodiscard]] bool leaveWanted() const { return leaveWanted_; }

  private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void place();

    HWND strip_ = nullptr;
    HWND text_ = nullptr;
    HWND button_ = nullptr;
    HWND focusBefore_ = nullptr;
    std::string what_;
    int seconds_ = -1;
    bool leaveWanted_ = false;
};

} // namespace torvane
