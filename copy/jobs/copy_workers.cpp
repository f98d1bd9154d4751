#include "copy/jobs/copy_workers.h"

#include "base/stay_awake.h"
#include "copy/engine/windows_copy_system.h"
#include "copy/jobs/copy_jobs.h"
#include "state/app_state.h"
#include "state/drive_job.h"

#include <string>
#include <utility>

namespace torvane {

namespace {

class NoDisplay : public JobDisplay {
  public:
    void setStatus(std::string_view) override {}
    void repaint() override {}
    void repaintTrack(const TrackArea&) override {}
    void startExplosionTimer(int) override {}
};

DWORD runJob(AppState& state, const std::string& path, std::uint32_t (*run)(const CopyJob&)) {
    const StayAwake awake;
    WindowsCopySystem system(state);
    NoDisplay noDisplay;
    JobDisplay* const display = state.copy.display;
    return run({.state = state.copy,
                .running = state.jobActive,
                .system = system,
                .display = display != nullptr ? *display : noDisplay,
                .destinationPath = path});
}

} // namespace

DWORD ForwardClone(AppState& state, const std::string& path) {
    return runJob(state, path, runForwardClone);
}

DWORD ReverseClone(AppState& state, const std::string& path) {
    return runJob(state, path, runReverseClone);
}

DWORD ImageToFileWorker(AppState& state, const std::string& path) {
    return runJob(state, path, runImageToFile);
}

DWORD ForensicImageWorker(AppState& state, const std::string& path) {
    return runJob(state, path, runForensicImage);
}

DWORD ImageToDriveWorker(AppState& state, const std::string& path) {
    return runJob(state, path, runImageToDrive);
}

bool startCopyWorker(AppState& state, CopyWorker worker) {
    // Not what was asked of a job that is still at work, which this one does not replace.
    if (state.driveJobAtWork == 0) {
        state.copy.stopAsked = 0;
    }
    // The job works with the path of its start: the folder itself belongs to the window's thread.
    std::string path(state.chosen.destinationFolder.view());
    return startDriveJob(state, "copy job", [&state, worker, path = std::move(path)] { return worker(state, path); });
}

} // namespace torvane
