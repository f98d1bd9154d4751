#pragma once

#include <windows.h>

namespace torvane {

struct AppState;

/// Lets the user image `copy.imageSource` forensically into `destinationFolder`; returns when the dialog is closed.
void showForensicDialog(AppState& state, HWND owner);

} // namespace torvane
