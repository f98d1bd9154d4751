#pragma once

#include <windows.h>

namespace torvane {

/// Shows `text` while the mouse rests on `control`. The tip lives as long as the dialog that holds the control.
void addToolTip(HWND control, const char* text);

} // namespace torvane
