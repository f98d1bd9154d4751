#pragma once

#include <windows.h>

#include <string>

namespace torvane {

/// Shows a text to read, select and copy; its lines may end in either way. Returns when the user has left it.
void showText(const char* title, const std::string& text, HWND owner);

} // namespace torvane
