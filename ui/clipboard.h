#pragma once

#include <windows.h>

#include <string>

namespace torvane {

/// Puts the text on the clipboard in place of what is there; `owner` is a window of the calling thread. False, with the
/// clipboard as it was, when another program holds it for longer than a fifth of a second.
[[nodiscard]] bool copyToClipboard(HWND owner, const std::string& text);

} // namespace torvane
