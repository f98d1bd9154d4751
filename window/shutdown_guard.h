#pragma once

#include "jobs/job_kind.h"

#include <windows.h>

namespace torvane {

// Log off, shut down and restart for an update wait while a job uses or changes drives (WM_QUERYENDSESSION,
// ShutdownBlockReasonCreate). The user may still end the session in spite of it.

/// Tells the system why the session must not end now, or that it may. To be called whenever a job has begun or ended,
/// by the thread of `window`, the main window.
void showShutdownReason(HWND window, JobKinds atWork);

/// The answer to WM_QUERYENDSESSION. False, with one log row, when a job stands in the way.
[[nodiscard]] bool mayEndSession(JobKinds atWork);

/// The session ends now, whatever is at work: one row in the day's log file.
void noteSessionEnd(JobKinds atWork);

} // namespace torvane
