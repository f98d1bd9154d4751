#pragma once

#include <windows.h>

#include <cstdint>

namespace torvane {

struct AppState;
class JobClaim;

// The system's automatic mounting of new volumes, asked for and changed by diskpart; scripts and results as in
// disk_part.h.

/// Asks for the system's automatic mounting, stores the MountStatus in the state and redraws the drive list. Returns
/// the status, or 0 on a failure or when the user left (the stored status is then untouched). On the window's thread,
/// which goes on answering while it waits for diskpart.
std::int32_t DP_GetMountStatus(AppState& state);

/// What the threads run that change automatic mounting. Exit code 1 after a normal end, 0 after a failure; once the
/// script has been written, a failure leaves the flag up.
DWORD DP_DisableMountingWorker(AppState& state, JobClaim& claim);
DWORD DP_EnableMountingWorker(AppState& state, JobClaim& claim);

/// Starts the thread that enables automatic mounting, for whoever tells the outcome himself.
bool startEnableMounting(AppState& state);

/// The commands "Disable Drive Mounting" and "Enable Drive Mounting", on the window's thread: each asks for the
/// status, then starts its worker and its timer, which reports the outcome; a user who leaves while it asks starts
/// nothing. When the worker fails, its thread shows a box at once that says at what,
/// and how to lower the flag that it left up; the disable command's timer has nothing to report then and stops.
void onDisableMounting(AppState& state);
void onEnableMounting(AppState& state);

inline constexpr int kEnableMountTimer = 3000;
inline constexpr int kDisableMountTimer = 3001;
inline constexpr int kMountTimerMilliseconds = 500;

/// Each tick of the two timers: once no disable request is in progress, stops the timer and shows the outcome. Other
/// timers are ignored.
void onMountTimer(AppState& state, int timerId);

} // namespace torvane
