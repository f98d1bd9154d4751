#pragma once

#include "surface/read_test_display.h"
#include "surface/read_test_kind.h"

#include <windows.h>

#include <memory>

namespace torvane {

struct AppState;
struct DriveRecord;
class JobClaim;
class MainView;

/// What a test's worker is given. The display is shared, because the dialog does not wait for the worker.
struct ReadTestStart {
    ReadTestKind kind;
    DriveRecord& drive;
    std::shared_ptr<ReadTestDisplay> display;
};

// The tests' workers: each runs on the calling thread until it is done and returns the thread's exit code, 1. The
// system does not fall asleep meanwhile. `view`: null in tests that need no window.
DWORD ShortReadTest(MainView* view, const ReadTestStart& start, JobClaim& claim);
DWORD CriticalReadTest(MainView* view, const ReadTestStart& start, JobClaim& claim);
DWORD NistReadTest(MainView* view, const ReadTestStart& start, JobClaim& claim);

/// Starts the test on a thread of its own. A test that is at work already does not matter: closing the dialog does not
/// wait for its test, so several may be, those that were told to stop and still have a read in flight, Short tests,
/// which cannot be stopped, and whatever "Start Testing" started twice.
///
/// False, with one log row: when the system has no room for a thread; after a box, when another Torvane uses the drive;
/// and for the Critical and the NIST test while a copy or a change of a disk that was told to stop is still at work,
/// which the status label tells too, as for any test while a scan is. On the window's thread.
bool startReadTest(AppState& state, ReadTestKind kind, DriveRecord& drive, std::shared_ptr<ReadTestDisplay> display);

} // namespace torvane
