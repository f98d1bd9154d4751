#pragma once

#include <windows.h>

#include <functional>

namespace torvane::waiting {

/// As `run` (ui/waiting.h), for a dialog that may not be on the screen yet: who waits long enough for the strip sees
/// it.
[[nodiscard]] bool runOver(HWND dialog, const char* what, std::function<void()> work);

} // namespace torvane::waiting
