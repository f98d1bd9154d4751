#pragma once

#include <windows.h>

namespace torvane {

struct AppState;

/// Lets the user write the image file whose path `destinationFolder` holds onto a drive; returns when the dialog is
/// closed.
void showImageToDriveDialog(AppState& state, HWND owner);

} // namespace torvane
