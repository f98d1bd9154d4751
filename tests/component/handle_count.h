#pragma once

#include "tests/ui/driver/resource_counts.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <functional>

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
[[nodiscard]] inline DWORD lowestHandleCount(DWORD enough, int looks = 1000) {
    DWORD lowest = openHandleCount();
    for (int look = 0; look < looks && lowest > enough; ++look) {
        Sleep(5);
        lowest = std::min(lowest, openHandleCount());
    }
    return lowest;
}

/// Does the same again and again: no handle may be lost over it, not even in every fourth round. What the system keeps
/// for itself it takes in the first; and now and then, where a program is started, Wine keeps one for good: then
/// another four rounds must do without.
inline void expectNoHandleLost(const std::function<void()>& again) {
    constexpr int kRounds = 4;
    constexpr int kAttempts = 8;
    again();
    DWORD before = lowestHandleCount(0, 80);
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        for (int round = 0; round < kRounds; ++round) {
            again();
        }
        const DWORD after = lowestHandleCount(before);
        if (after <= before) {
            return;
        }
        before = after;
    }
    ADD_FAILURE() << "handles are lost again and again";
}

} // namespace torvane::testing
