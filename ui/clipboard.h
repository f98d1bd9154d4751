#pragma once

#include <windows.h>

#include <string>

namespace torvane {

/// Puts the text on the clipboard in place of what is there; `owner` is a window of the calling thread. False when
/// another program holds it for longer than a fifth of a second, and when there is too little memory.
[[nodiscard]] bool copyToClipboard(HWND owner, const std::string& text);

} // namespace torvane
