#pragma once

#include <windows.h>

namespace torvane {

struct DriveRecord;

/// "Quick Disk View": shows the drive's sectors as hexadecimal digits and characters, until the user closes the dialog.
void showHexViewer(DriveRecord& drive, HWND owner);

} // namespace torvane
