#pragma once

#include <windows.h>

namespace torvane::prompts {

/// Makes `window`, and whatever dialog is open above it, the owner of every box. Null: boxes have no owner.
/// Any thread may call.
void setOwner(HWND window);

} // namespace torvane::prompts
