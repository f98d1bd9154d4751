#include "copy/copy_workers.h"

#include "app/app_state.h"
#include "app/event_log.h"
#include "base/worker_thread.h"
#include "copy/copy_jobs.h"
#include "copy/windows_copy_system.h"

#include <memory>

namespace torvane {

namespace {

/// Keeps the system from falling asleep while the calling thread is in the scope; the screen may go dark.
class StayAwake {
  public:
    StayAwake() { SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED); }
    ~StayAwake() { SetThreadExecutionState(ES_CONTINUOUS); }
    StayAwake(const StayAwake&) = delete;
    StayAwake& operator=(const StayAwake&) = delete;
};

class NoDisplay : public JobDisplay {
  public:
    void setStatus(std::string_view) override {}
    void repaint() override {}
    void repaintTrack(const TrackArea&) override {}
    void startExplosionTimer(int) override {}
};

DWORD runJob(AppState& state, std::uint32_t (*run)(const CopyJob&)) {
    const StayAwake awake;
    WindowsCopySystem system(state);
    NoDisplay noDisplay;
    JobDisplay* const display = state.copy.display;
    return run({.state = state.copy,
                .running = state.jobActive,
                .system = system,
                .display = display != nullptr ? *display : noDisplay,
                .destinationPath = std::string(state.destinationFolder.view())});
}

/// What a job's thread is given.
struct WorkerStart {
    AppState& state;
    CopyWorker worker;
};

DWORD WINAPI copyWorkerThread(void* argument) {
    const std::unique_ptr<WorkerStart> start(static_cast<WorkerStart*>(argument));
    const DWORD exitCode = start->worker(start->state);
    start->state.copy.workerAtWork = 0;
    return exitCode;
}

} // namespace

DWORD ForwardClone(AppState& state) {
    return runJob(state, runForwardClone);
}

DWORD ReverseClone(AppState& state) {
    return runJob(state, runReverseClone);
}

DWORD ImageToFileWorker(AppState& state) {
    return runJob(state, runImageToFile);
}

DWORD ForensicImageWorker(AppState& state) {
    return runJob(state, runForensicImage);
}

DWORD ImageToDriveWorker(AppState& state) {
    return runJob(state, runImageToDrive);
}

bool startCopyWorker(AppState& state, CopyWorker worker) {
    if (state.copy.workerAtWork.exchange(1) == 1) {
        return false;
    }
    std::unique_ptr<WorkerStart> start(new WorkerStart{state, worker});
    state.worker = startThread(copyWorkerThread, start.get());
    if (!state.worker) {
        state.copy.workerAtWork = 0;
        LogEvent("ERROR", "Could not start the copy job");
        return false;
    }
    static_cast<void>(start.release()); // the thread's now
    return true;
}

} // namespace torvane
