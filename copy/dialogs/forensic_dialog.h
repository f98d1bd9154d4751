#pragma once

#include <windows.h>

#include <string_view>

namespace torvane {

struct AppState;
struct DriveRecord;

/// Lets the user image `source` forensically into `folder`; returns when the dialog is closed.
void showForensicDialog(AppState& state, DriveRecord& source, std::string_view folder, HWND owner);

} // namespace torvane
