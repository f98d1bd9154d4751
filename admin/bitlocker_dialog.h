#pragma once

#include <windows.h>

namespace torvane {

struct AppState;

/// Shows the "Bitlocker Scan" dialog for the active drive, which must be chosen; returns when it is closed.
void showBitLockerScan(AppState& state, HWND owner);

} // namespace torvane
