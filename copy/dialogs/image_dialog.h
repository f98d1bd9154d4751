#pragma once

#include <windows.h>

#include <string_view>

namespace torvane {

struct AppState;
struct DriveRecord;

/// Lets the user image `source` into `folder`; returns when the dialog is closed.
void showImageDialog(AppState& state, DriveRecord& source, std::string_view folder, HWND owner);

} // namespace torvane
