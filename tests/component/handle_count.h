#pragma once

#include "tests/ui/driver/resource_counts.h"

#include <windows.h>

#include <algorithm>

namespace torvane::testing {

/// Kernel handles of this process, from the system's own table: GetProcessHandleCount tells 0 under Wine, always.
[[nodiscard]] inline DWORD openHandleCount() {
    // The first count connects the process to the desktop, whose windows are counted too.
    static const int connected = driver::countResources(GetCurrentProcessId()).kernelHandles;
    (void)connected;
    return static_cast<DWORD>(driver::countResources(GetCurrentProcessId()).kernelHandles);
}

/// The least number of handles in so many looks, 5 ms apart, which end as soon as there are no more than `enough`: what
/// a thread had is closed shortly after its end.
[[nodiscard]] inline DWORD lowestHandleCount(DWORD enough, int looks = 200) {
    DWORD lowest = openHandleCount();
    for (int look = 0; look < looks && lowest > enough; ++look) {
        Sleep(5);
        lowest = std::min(lowest, openHandleCount());
    }
    return lowest;
}

} // namespace torvane::testing
