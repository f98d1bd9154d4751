#pragma once

#include <windows.h>

namespace torvane {

struct DriveRecord;
struct ScanState;

/// Shows the "Bitlocker Scan" dialog for the drive; returns when it is closed. The volume table is brought up to date
/// for each of its scans.
void showBitLockerScan(DriveRecord& drive, ScanState& scan, HWND owner);

} // namespace torvane
