#pragma once

#include <windows.h>

namespace torvane {

struct AppState;
struct DriveRecord;

/// Rescues what can be read of the drive into an image or onto another drive, and shows the whole of it. Returns when
/// the user has left the dialog.
void showRescueDialog(AppState& state, DriveRecord& source, HWND owner);

} // namespace torvane
