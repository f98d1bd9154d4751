#include "surface/read_test_workers.h"

#include "base/stay_awake.h"
#include "base/worker_thread.h"
#include "state/app_state.h"
#include "state/drive_job.h"
#include "state/event_log.h"
#include "surface/read_tests.h"
#include "surface/windows_read_test_system.h"

#include <utility>

namespace torvane {

namespace {

DWORD runTest(AppState& state, const ReadTestStart& start, std::uint32_t (*run)(ReadTestJob&)) {
    const StayAwake awake;
    WindowsReadTestSystem system(state);
    ReadTestJob job{.kind = start.kind,
                    .drive = start.drive,
                    .system = system,
                    .display = *start.display,
                    .running = {state.jobActive, state.readTests.lastStopped, start.run},
                    .failedSector = {}};
    return run(job);
}

struct Worker {
    AppState& state;
    ReadTestStart start;
};

DWORD runWorker(AppState& state, const ReadTestStart& start) {
    switch (start.kind) {
    case kShortReadTest:
        return ShortReadTest(state, start);
    case kCriticalReadTest:
        return CriticalReadTest(state, start);
    case kNistReadTest:
        return NistReadTest(state, start);
    }
    return 1;
}

// Before the thread runs, so that a scan or another job finds the words however late it starts.
void raiseBusyWords(AppState& state, ReadTestKind kind, std::int32_t run) {
    ++state.readTests.workersAtWork;
    if (kind == kShortReadTest) {
        ++state.shortTestsAtWork;
    } else {
        ++state.readTests.jobRunsAtWork;
        state.readTests.lastJobRun = run;
        state.jobActive = 1;
    }
}

// The drive's record may go as soon as this is done.
void lowerBusyWords(AppState& state, ReadTestKind kind) {
    if (kind == kShortReadTest) {
        --state.shortTestsAtWork;
    } else {
        --state.readTests.jobRunsAtWork;
    }
    --state.readTests.workersAtWork;
}

DWORD WINAPI readTestThread(void* argument) {
    const std::unique_ptr<Worker> worker(static_cast<Worker*>(argument));
    const DWORD exitCode = runWorker(worker->state, worker->start);
    lowerBusyWords(worker->state, worker->start.kind);
    return exitCode;
}

} // namespace

DWORD ShortReadTest(AppState& state, const ReadTestStart& start) {
    return runTest(state, start, runShortTest);
}

DWORD CriticalReadTest(AppState& state, const ReadTestStart& start) {
    return runTest(state, start, runCriticalTest);
}

DWORD NistReadTest(AppState& state, const ReadTestStart& start) {
    return runTest(state, start, runNistTest);
}

bool startReadTest(AppState& state, ReadTestKind kind, DriveRecord& drive, std::shared_ptr<ReadTestDisplay> display) {
    // The running flag would make a copy go on that was told to stop and has not noticed yet.
    if (kind != kShortReadTest && lastDriveJobIsStillEnding(state)) {
        display->setStatus("Status: The last job on a drive has not ended yet");
        return false;
    }
    const std::int32_t run = ++state.readTests.lastRun;
    std::unique_ptr<Worker> worker(new Worker{state, {kind, drive, std::move(display), run}});
    raiseBusyWords(state, kind, run);
    state.worker = startThread(readTestThread, worker.get());
    if (!state.worker) {
        lowerBusyWords(state, kind);
        if (kind != kShortReadTest) {
            state.jobActive = 0;
        }
        LogEvent("ERROR", "Could not start the read test");
        return false;
    }
    static_cast<void>(worker.release()); // the thread's now
    return true;
}

void stopReadTests(AppState& state) {
    state.readTests.lastStopped = state.readTests.lastRun.load();
    state.jobActive = 0;
}

} // namespace torvane
