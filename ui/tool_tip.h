#pragma once

#include <windows.h>

#include <string>

namespace torvane {

/// A text that shows while the mouse rests on a control. It lives as long as the dialog that holds the control.
class ToolTip {
  public:
    /// `control` must take mouse messages: a static one does with SS_NOTIFY. With an empty text nothing shows.
    void attach(HWND control, const std::string& text);
    /// Replaces the text; does nothing before `attach`.
    void setText(const std::string& text);

  private:
    void send(UINT message, const std::string& text);

    HWND tip_ = nullptr;
    HWND control_ = nullptr;
};

} // namespace torvane
