#pragma once

#include "base/owned_handle.h"

#include <cstdint>
#include <functional>

namespace torvane {

struct AppState;
class JobClaim;

/// The "Load Drives" command, on the window's thread: guards, then forgets the last scan (its records and handles are
/// freed here, after the list's rows are gone) and starts the scan worker and the progress thread.
void LoadDrives(AppState& state);

/// The scan itself, on the worker thread: fills the drive and volume tables and the drive list. The drive table is
/// empty when it begins. Asked to stop, it ends the tool at work, runs no other, and lists the drives with what it
/// has. Returns the thread's exit code, 1.
DWORD runDriveScan(AppState& state, JobClaim& claim);

/// Time as the progress thread sees it.
struct ScanClock {
    std::function<std::int64_t()> seconds; ///< whole seconds, never going back
    std::function<void(std::uint32_t milliseconds)> sleep;
};

/// The system's clock.
[[nodiscard]] ScanClock systemScanClock();

/// Shows the scan's stage once a second until it is complete, and hides the bar two seconds later. A later scan's bar
/// is left alone. Returns the thread's exit code, 1.
DWORD runScanProgress(AppState& state, const ScanClock& clock);

} // namespace torvane
