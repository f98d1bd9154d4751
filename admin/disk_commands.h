#pragma once

#include <windows.h>

namespace torvane {

struct AppState;
struct DriveRecord;

// What the drive list's context menu offers. Guards and starts run on the window's thread. diskpart takes its time, so
// each change runs on a thread of its own, with its state in the drive's "Status" cell, and a box says how it ended.

/// What must hold before a disk's attribute may be changed: no job and no scan is at work, and the record is a disk. A
/// guard that refuses has shown its box.
[[nodiscard]] bool mayChangeDisk(const AppState& state, const DriveRecord& drive);

/// The same before a disk may be cleaned; the system drive never may.
[[nodiscard]] bool mayCleanDisk(const AppState& state, const DriveRecord& drive);

/// "Set Read-Only" and "Clear Read-Only".
void startSetReadOnly(AppState& state, DriveRecord& drive);
void startClearReadOnly(AppState& state, DriveRecord& drive);

/// "Clean Disk...", once the user has confirmed it.
void startCleanDisk(AppState& state, DriveRecord& drive);

// What their threads run, on the calling thread. `jobActive` is cleared before the box is shown. They return the
// thread's exit code: 1 when the change was made, else 0.

DWORD setReadOnly(AppState& state, DriveRecord& drive);
DWORD clearReadOnly(AppState& state, DriveRecord& drive);
DWORD cleanDisk(AppState& state, DriveRecord& drive);

} // namespace torvane
