#pragma once

#include <windows.h>

namespace torvane {

struct AppState;
struct DriveRecord;
class JobClaim;

// What the drive list's context menu offers. The starts run on the window's thread. diskpart takes its time, so
// each change runs on a thread of its own, with its state in the drive's "Status" cell, and a box says how it ended.

/// "Set Read-Only" and "Clear Read-Only".
void startSetReadOnly(AppState& state, DriveRecord& drive);
void startClearReadOnly(AppState& state, DriveRecord& drive);

/// "Clean Disk...", once the user has confirmed it.
void startCleanDisk(AppState& state, DriveRecord& drive);

// What their threads run, on the calling thread. The flag is lowered before the box is shown. They return the
// thread's exit code: 1 when the change was made, else 0.

DWORD setReadOnly(AppState& state, JobClaim& claim, DriveRecord& drive);
DWORD clearReadOnly(AppState& state, JobClaim& claim, DriveRecord& drive);
DWORD cleanDisk(AppState& state, JobClaim& claim, DriveRecord& drive);

} // namespace torvane
