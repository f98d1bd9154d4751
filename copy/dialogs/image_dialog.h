#pragma once

#include <windows.h>

namespace torvane {

struct AppState;

/// Lets the user image `copy.imageSource` into `destinationFolder`; returns when the dialog is closed.
void showImageDialog(AppState& state, HWND owner);

} // namespace torvane
