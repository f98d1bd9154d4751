#pragma once

#include <windows.h>

namespace torvane::bench {

/// Runs `start`, which starts a process and returns a Win32 error, up to four times while it fails with
/// ERROR_INTERNAL_ERROR. On a busy machine Wine now and then loses a child while it starts, and calls that so. The
/// child has not run, so it can be started again; Windows never says so.
template <typename Start>
[[nodiscard]] DWORD startAgainWhenLost(Start start) {
    constexpr int kTries = 4;
    DWORD error = start();
    for (int tried = 1; tried < kTries && error == static_cast<DWORD>(ERROR_INTERNAL_ERROR); ++tried) {
        error = start();
    }
    return error;
}

} // namespace torvane::bench
