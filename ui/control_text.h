#pragma once

#include <windows.h>

#include <string>

namespace torvane {

// Texts of windows and controls. Asked and set in the system's own characters: of a text in the code page the system
// tells the length only roughly (GetWindowTextLength), and GDI, which draws it, knows no code page of a process.

/// The whole text of a window or control; empty for a null handle.
[[nodiscard]] std::string controlText(HWND control);
/// The same as GDI takes it.
[[nodiscard]] std::wstring wideControlText(HWND control);

void setWindowText(HWND control, const std::string& text);

} // namespace torvane
