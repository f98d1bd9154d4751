#pragma once

#include <windows.h>

namespace torvane {

struct AppState;

/// Tells in an image dialog which drive is imaged, and into which folder.
void showImageTexts(HWND dialog, const AppState& state);

} // namespace torvane
