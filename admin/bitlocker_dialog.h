#pragma once

#include <windows.h>

namespace torvane {

struct DriveRecord;
struct VolumeTable;

/// Shows the "Bitlocker Scan" dialog for the drive; returns when it is closed.
void showBitLockerScan(DriveRecord& drive, const VolumeTable& volumes, HWND owner);

} // namespace torvane
