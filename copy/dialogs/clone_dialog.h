#pragma once

#include <windows.h>

namespace torvane {

struct AppState;
struct DriveRecord;

/// Lets the user copy `source` onto another drive; returns when the dialog is closed.
void showCloneDialog(AppState& state, DriveRecord& source, HWND owner);

} // namespace torvane
