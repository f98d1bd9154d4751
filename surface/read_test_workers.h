#pragma once

#include "surface/read_test_display.h"
#include "surface/read_test_kind.h"

#include <windows.h>

#include <cstdint>
#include <memory>

namespace torvane {

struct AppState;
struct DriveRecord;

/// What a test's worker is given. The display is shared, because the dialog does not wait for the worker.
struct ReadTestStart {
    ReadTestKind kind;
    DriveRecord& drive;
    std::shared_ptr<ReadTestDisplay> display;
    std::int32_t run; ///< the run's number, see ReadTestState
};

// The tests' workers: each runs on the calling thread until it is done and returns the thread's exit code, 1. The
// system does not fall asleep meanwhile.
DWORD ShortReadTest(AppState& state, const ReadTestStart& start);
DWORD CriticalReadTest(AppState& state, const ReadTestStart& start);
DWORD NistReadTest(AppState& state, const ReadTestStart& start);

/// Starts the test on a thread of its own, whose handle the state keeps. A test that is running already does not
/// matter.
///
/// False, with one log row: when the system has no room for a thread; and for the Critical and the NIST test while a
/// copy that was told to stop has a read in flight, which the status label tells too. On the window's thread.
bool startReadTest(AppState& state, ReadTestKind kind, DriveRecord& drive, std::shared_ptr<ReadTestDisplay> display);

/// Tells every run to stop after its current block or segment; the Short test pays no heed. On the window's thread.
void stopReadTests(AppState& state);

} // namespace torvane
