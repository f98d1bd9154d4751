#pragma once

#include <windows.h>

namespace torvane::prompts {

/// Makes `window`, and whatever dialog is open above it, the owner of every box. Null: boxes have no owner.
/// Any thread may call.
void setOwner(HWND window);

/// The window that a box shown now belongs in front of: the dialog or box that is open above the main window, or the
/// main window itself. Null when there is none. Any thread may call.
[[nodiscard]] HWND owner();

} // namespace torvane::prompts
