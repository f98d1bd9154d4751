#pragma once

#include <windows.h>

#include <functional>

namespace torvane {

struct AppState;

/// Starts a job that works with drive records on a thread of its own, whose handle the state keeps. `job` returns the
/// thread's exit code. The records stay until it has (`driveJobAtWork`).
///
/// False, with nothing started, while the thread of an earlier job is still at work, or when the system has no room for
/// a thread; for the latter one "ERROR" log row names the job by `name`.
[[nodiscard]] bool startDriveJob(AppState& state, const char* name, std::function<DWORD()> job);

/// True, with a log row, while the thread of an earlier job is still at work after that job was told to stop: its last
/// read may take long, and it uses the records of its drives until then.
[[nodiscard]] bool lastDriveJobIsStillEnding(const AppState& state);

} // namespace torvane
