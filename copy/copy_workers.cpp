#include "copy/copy_workers.h"

#include "app/app_state.h"
#include "app/drive_job.h"
#include "app/event_log.h"
#include "base/stay_awake.h"
#include "copy/copy_jobs.h"
#include "copy/windows_copy_system.h"

namespace torvane {

namespace {

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
    return startDriveJob(state, "copy job", [&state, worker] { return worker(state); });
}

bool lastCopyIsStillEnding(const AppState& state) {
    if (state.copy.workerAtWork == 0) {
        return false;
    }
    LogEvent("STATUS", "The last copy job has not ended yet");
    return true;
}

} // namespace torvane
