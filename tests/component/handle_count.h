#pragma once

#include "tests/ui/driver/resource_counts.h"

#include <windows.h>

namespace torvane::testing {

/// Kernel handles of this process, from the system's own table: GetProcessHandleCount tells 0 under Wine, always.
[[nodiscard]] inline DWORD openHandleCount() {
    // The first count connects the process to the desktop, whose windows are counted too.
    static const int connected = driver::countResources(GetCurrentProcessId()).kernelHandles;
    (void)connected;
    return static_cast<DWORD>(driver::countResources(GetCurrentProcessId()).kernelHandles);
}

} // namespace torvane::testing
