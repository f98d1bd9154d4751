#include "copy/jobs/start_copy.h"

#include "base/stay_awake.h"
#include "copy/engine/copy_drive_io.h"
#include "copy/jobs/copy_job.h"
#include "copy/jobs/windows_copy_system.h"
#include "copy/rescue/windows_rescue_system.h"
#include "state/app_state.h"
#include "state/drive_use.h"
#include "state/job_thread.h"
#include "state/still_at_work.h"

#include <optional>
#include <utility>

namespace torvane {

namespace {

using CopyOperation = DWORD (*)(AppState&, JobClaim&, const CopyOrder&, JobDisplay&);

CopyOperation operationFor(CopyKind kind) {
    switch (kind) {
    case CopyKind::kForwardClone:
        return ForwardClone;
    case CopyKind::kReverseClone:
        return ReverseClone;
    case CopyKind::kImageToFile:
        return ImageToFileWorker;
    case CopyKind::kForensicImage:
        return ForensicImageWorker;
    case CopyKind::kImageToDrive:
        return ImageToDriveWorker;
    case CopyKind::kRescue:
        return RescueWorker;
    case CopyKind::kVerifyImage:
        break;
    }
    return VerifyImageWorker;
}

DWORD runJob(AppState& state, JobClaim& claim, const CopyOrder& order, JobDisplay& display,
             std::uint32_t (*run)(const CopyJob&)) {
    const StayAwake awake;
    CopyDriveIo drives;
    WindowsCopySystem system(state);
    WindowsRescueSystem rescue;
    return run({.order = order,
                .claim = claim,
                .track = state.raceTrack,
                .drives = drives,
                .system = system,
                .display = display,
                .keptImages = keptImages(),
                .rescue = &rescue});
}

} // namespace

DWORD ForwardClone(AppState& state, JobClaim& claim, const CopyOrder& order, JobDisplay& display) {
    return runJob(state, claim, order, display, runForwardClone);
}

DWORD ReverseClone(AppState& state, JobClaim& claim, const CopyOrder& order, JobDisplay& display) {
    return runJob(state, claim, order, display, runReverseClone);
}

DWORD ImageToFileWorker(AppState& state, JobClaim& claim, const CopyOrder& order, JobDisplay& display) {
    return runJob(state, claim, order, display, runImageToFile);
}

DWORD ForensicImageWorker(AppState& state, JobClaim& claim, const CopyOrder& order, JobDisplay& display) {
    return runJob(state, claim, order, display, runForensicImage);
}

DWORD ImageToDriveWorker(AppState& state, JobClaim& claim, const CopyOrder& order, JobDisplay& display) {
    return runJob(state, claim, order, display, runImageToDrive);
}

DWORD RescueWorker(AppState& state, JobClaim& claim, const CopyOrder& order, JobDisplay& display) {
    return runJob(state, claim, order, display, runRescueJob);
}

DWORD VerifyImageWorker(AppState& state, JobClaim& claim, const CopyOrder& order, JobDisplay& display) {
    return runJob(state, claim, order, display, runVerifyImage);
}

OpenImages& keptImages() {
    static OpenImages& images = *new OpenImages;
    return images;
}

bool startCopy(AppState& state, CopyOrder order, JobDisplay& display) {
    std::optional<JobClaim> claim = state.jobs.begin(jobKindOf(order.kind));
    if (!claim) {
        sayWhoIsAtWork(state.jobs.whyNot(jobKindOf(order.kind)));
        return false;
    }
    std::optional<DriveUse> use = useDrives({order.source, order.destination});
    if (!use) {
        return false;
    }
    return startJobThread(std::move(*claim), "copy job",
                          [&state, &display, order = std::move(order), use = std::move(*use)](JobClaim& mine) {
                              return operationFor(order.kind)(state, mine, order, display);
                          });
}

} // namespace torvane
