#include "surface/read_test_workers.h"

#include "base/stay_awake.h"
#include "discovery/windows_drive_io.h"
#include "state/app_state.h"
#include "state/drive_use.h"
#include "state/event_log.h"
#include "state/job_thread.h"
#include "state/last_drive_job.h"
#include "state/still_at_work.h"
#include "surface/read_tests.h"
#include "surface/windows_read_test_system.h"

#include <optional>
#include <utility>

namespace torvane {

namespace {

DWORD runTest(MainView* view, const ReadTestStart& start, JobClaim& claim, std::uint32_t (*run)(ReadTestJob&)) {
    const StayAwake awake;
    WindowsDriveIo io;
    WindowsReadTestSystem system(view);
    ReadTestJob job{.kind = start.kind,
                    .drive = start.drive,
                    .io = io,
                    .system = system,
                    .display = *start.display,
                    .claim = claim,
                    .failedRead = {}};
    return run(job);
}

DWORD runWorker(MainView* view, const ReadTestStart& start, JobClaim& claim) {
    switch (start.kind) {
    case kShortReadTest:
        return ShortReadTest(view, start, claim);
    case kCriticalReadTest:
        return CriticalReadTest(view, start, claim);
    case kNistReadTest:
        return NistReadTest(view, start, claim);
    }
    return 1;
}

} // namespace

DWORD ShortReadTest(MainView* view, const ReadTestStart& start, JobClaim& claim) {
    return runTest(view, start, claim, runShortTest);
}

DWORD CriticalReadTest(MainView* view, const ReadTestStart& start, JobClaim& claim) {
    return runTest(view, start, claim, runCriticalTest);
}

DWORD NistReadTest(MainView* view, const ReadTestStart& start, JobClaim& claim) {
    return runTest(view, start, claim, runNistTest);
}

bool startReadTest(AppState& state, ReadTestKind kind, DriveRecord& drive, std::shared_ptr<ReadTestDisplay> display) {
    std::optional<JobClaim> claim = state.jobs.begin(jobKindOf(kind));
    if (!claim) {
        LogEvent("STATUS", "%s", kLastDriveJobStillEnding);
        display->setStatus(std::string("Status: ") + kLastDriveJobStillEnding);
        sayWhoIsAtWork(state.jobs.whyNot(jobKindOf(kind)));
        return false;
    }
    std::optional<DriveUse> use = useDrives({&drive});
    if (!use) {
        display->setStatus("Status: Another Torvane uses this drive");
        return false;
    }
    return startJobThread(std::move(*claim), "read test",
                          [view = state.view, start = ReadTestStart{kind, drive, std::move(display)},
                           use = std::move(*use)](JobClaim& own) { return runWorker(view, start, own); });
}

} // namespace torvane
