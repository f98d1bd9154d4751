#pragma once

#include "base/owned_handle.h"

#include <cstdint>

namespace torvane {

struct AppState;
struct DriveRecord;
class JobClaim;
class MainView;

// Disk administration by the system's diskpart tool. Every operation writes a small script into the current folder,
// runs "diskpart /s <script>" with its output captured to a results file, and reads the outcome from that file. Scripts
// and results stay on disk as a record of what was done. Each failure gives an "ERROR" log row, behind that of the
// command runner when it was this that failed.

/// Refreshes `drive.readOnly` (1: read-only or not known) and redraws the drive list. Returns 1 when the results were
/// read, 0 on a failure. Waits for diskpart on the calling thread.
int DP_TestReadOnly(MainView& view, DriveRecord& drive);

/// Asks for the system's automatic mounting, stores the MountStatus in the state and redraws the drive list. Returns
/// the status, or 0 on a failure or when the user left (the stored status is then untouched). On the window's thread,
/// which goes on answering while it waits for diskpart.
std::int32_t DP_GetMountStatus(AppState& state);

/// Sets or clears the drive's read-only attribute, refreshes `drive.readOnly` as DP_TestReadOnly does and returns it; 0
/// when the script could not be written. Waits for diskpart on the calling thread. Two of the program's named
/// operations; no command calls them.
std::int32_t DP_SetReadOnly(MainView& view, DriveRecord& drive);
std::int32_t DP_ClearReadOnly(MainView& view, DriveRecord& drive);

/// What these two do, for the commands. True when diskpart tells afterwards that the attribute is as wanted; never for
/// an image file, for which diskpart is not asked.
bool changeReadOnly(MainView& view, DriveRecord& drive, bool wanted);

/// Wipes the drive's partition table, so that the system lets go of its volumes and takes raw writes. Returns 1 when
/// diskpart reported success; otherwise 0, after one "ERROR" log row. Waits for diskpart on the calling thread.
int DP_CleanDisk(const DriveRecord& drive);

/// What the threads run that change automatic mounting. Exit code 1 after a normal end, 0 after a failure; once the
/// script has been written, a failure leaves the flag up.
DWORD DP_DisableMountingWorker(AppState& state, JobClaim& claim);
DWORD DP_EnableMountingWorker(AppState& state, JobClaim& claim);

/// Starts the thread that enables automatic mounting.
bool startEnableMounting(AppState& state);

/// The commands "Disable Drive Mounting" and "Enable Drive Mounting", on the window's thread: each starts its worker
/// and its timer, which reports the outcome.
void onDisableMounting(AppState& state);
void onEnableMounting(AppState& state);

inline constexpr int kEnableMountTimer = 3000;
inline constexpr int kDisableMountTimer = 3001;
inline constexpr int kMountTimerMilliseconds = 500;

/// Each tick of the two timers: once no disable request is in progress, stops the timer and shows the outcome. Other
/// timers are ignored.
void onMountTimer(AppState& state, int timerId);

} // namespace torvane
