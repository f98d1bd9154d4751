#pragma once

#include <windows.h>

#include <string_view>

namespace torvane {

struct AppState;

/// Lets the user write the image file `image` onto a drive; returns when the dialog is closed.
void showImageToDriveDialog(AppState& state, std::string_view image, HWND owner);

} // namespace torvane
