#pragma once

#include "base/scale.h"

#include <windows.h>

namespace torvane {

struct AppState;

/// Paints the active drive's health panel over the whole client area of the main window, and puts its texts into the
/// window's controls. `context` is that of WM_PAINT, `scale` the window's; everything reaches the screen in one
/// transfer. GDI+ must be running. A picture that cannot be loaded is left out.
void PaintHealthPanel(const AppState& state, HWND window, HDC context, Scale scale);

} // namespace torvane
