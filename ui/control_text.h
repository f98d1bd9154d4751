#pragma once

#include <windows.h>

#include <string>

namespace torvane {

/// The whole text of a window or control; empty for a null handle.
[[nodiscard]] std::string controlText(HWND control);

} // namespace torvane
