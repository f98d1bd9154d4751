#include "scan/scan_job.h"

#include "admin/disk_part.h"
#include "base/tool_watch.h"
#include "base/worker_thread.h"
#include "discovery/disk_identity.h"
#include "discovery/physical_drive_probe.h"
#include "discovery/volume_map.h"
#include "monitoring/smart_scan.h"
#include "scan/drives_ahead.h"
#include "scan/load_guard.h"
#include "scan/monitoring_dispatch.h"
#include "scan/scan_watch.h"
#include "state/app_state.h"
#include "state/event_log.h"
#include "state/job_thread.h"

#include <optional>
#include <string>
#include <utility>

namespace torvane {

namespace {

enum ScanStage : std::int32_t {
    kStageStarting = 0,
    kStageDriveDevices = 1,
    kStagePhysicalDevices = 2,
    kStageLogicalDevices = 3,
    kStageComplete = 5, // 4 is never used
};

constexpr std::uint32_t kProgressPollMilliseconds = 10;
constexpr std::uint32_t kProgressLingerMilliseconds = 2000;

void enterStage(AppState& state, ScanWatch& watch, ScanStage stage, const char* status) {
    state.scan.stage = stage;
    watch.enterStage(status);
}

DriveRecordPtr probeDrive(AppState& state, std::int32_t driveNumber) {
    ProbedDrive probed = probeDriveNumber(driveNumber);
    state.scan.drivesNotShown += probed.isUnsupported ? 1 : 0;
    if (probed.record) {
        rememberPartitionTable(*probed.record);
    }
    return std::move(probed.record);
}

void readMonitoringData(AppState& state, DrivesAhead& drives, DriveRecord& record) {
    const std::int32_t driveNumber = record.driveNumber;
    const ToolSubject subject(driveSubject(driveNumber));
    SmartParseDrive(state.smart, record, driveNumber);
    dispatchMonitoring(record);
    record.readOnly = 1; // not known
    if (const std::optional<ReadOnlyAnswer> answer = drives.takeReadOnly(record)) {
        takeReadOnlyAnswer(*state.view, record, *answer);
    }
}

// The table stays compact: a slot that received nothing takes the next number's drive.
void takeAllDrives(AppState& state, DrivesAhead& drives) {
    for (std::int32_t driveNumber = 0; driveNumber < kMaxDrives; ++driveNumber) {
        DriveRecordPtr& slot = state.scan.drives[static_cast<std::size_t>(state.scan.driveCount)];
        slot = probeDrive(state, driveNumber);
        if (slot) {
            readMonitoringData(state, drives, *slot);
            // Last: a driver may count what the drive is asked for its monitoring data as a change of its medium.
            rememberMediaChanges(*slot);
            ++state.scan.driveCount;
        }
    }
}

/// Reports and drives: diskpart is asked about the drives on another thread while the reports are made.
void readDevices(AppState& state, const JobClaim& claim, ScanWatch& watch) {
    std::optional<DrivesAhead> drives;
    enterStage(state, watch, kStageDriveDevices, "Loading Drive Devices");
    SmartScanDevices(state.smart, [&] {
        drives.emplace(DriveQuestions{.probe = &ProbePhysicalDrive, .askReadOnly = &askReadOnly}, claim, watch);
    });
    enterStage(state, watch, kStagePhysicalDevices, "Loading Physical Devices");
    takeAllDrives(state, *drives);
    drives->finish();
}

void listDrives(AppState& state) {
    for (int i = 0; i < state.scan.driveCount; ++i) {
        state.view->addDriveRow(*state.scan.drives[static_cast<std::size_t>(i)]);
    }
    state.view->showDrivesFound(state.scan.driveCount, state.scan.drivesNotShown);
}

void forgetLastScan(AppState& state) {
    state.activeDrive = nullptr;
    state.activeDriveChosen = 0;
    state.view->clearHealthPanel();
    state.view->deleteDriveRows();
    // Nobody points at the records any more.
    state.scan.driveCount = 0;
    for (DriveRecordPtr& record : state.scan.drives) {
        record.reset();
    }
}

} // namespace

void LoadDrives(AppState& state) {
    if (!mayLoadDrives(state.jobs)) {
        return;
    }
    // Before the scan's thread runs, so that a second press finds it however late the thread starts.
    std::optional<JobClaim> claim = state.jobs.begin(JobKind::kScan);
    if (!claim) {
        return;
    }
    // Before either thread, lest the stage of a fast worker be overwritten.
    state.scan.stage = kStageStarting;
    ++state.scan.scanNumber;
    static_cast<void>(startThread([&state] { return runScanProgress(state, systemScanClock()); }));
    forgetLastScan(state);
    if (!startJobThread(std::move(*claim), "drive scan",
                        [&state](JobClaim& own) { return runDriveScan(state, own); })) {
        state.scan.stage = kStageComplete; // nothing that the bar could wait for
    }
}

DWORD runDriveScan(AppState& state, JobClaim& claim) {
    ScanWatch watch(claim, [&state](const std::string& text) { state.view->setScanStatus(text); });
    const ToolWatchScope watched(watch);
    state.scan.driveCount = 0;
    state.scan.drivesNotShown = 0;
    LogEvent("STATUS", "Beginning Drive Scan");
    readDevices(state, claim, watch);
    enterStage(state, watch, kStageLogicalDevices, "Loading Logical Devices");
    EnumerateVolumes(state.scan);
    listDrives(state);
    if (claim.stopAsked()) {
        LogEvent("ERROR", "Drive Scan TERMINATED: tools that had not been asked for a drive's data were not asked");
    }
    claim.lower();
    enterStage(state, watch, kStageComplete, "Scan Complete");
    LogEvent("STATUS", "Drive Scan Completed: [%d] Drives Found", static_cast<int>(state.scan.driveCount));
    return 1;
}

ScanClock systemScanClock() {
    return {.seconds = [] { return static_cast<std::int64_t>(GetTickCount64() / 1000); },
            .sleep = [](std::uint32_t milliseconds) { Sleep(milliseconds); }};
}

DWORD runScanProgress(AppState& state, const ScanClock& clock) {
    const std::int32_t scanNumber = state.scan.scanNumber;
    const auto superseded = [&] { return state.scan.scanNumber != scanNumber; };
    state.view->showScanProgress(kStageComplete);

    std::int64_t shownSecond = clock.seconds();
    while (!superseded()) {
        const std::int64_t now = clock.seconds();
        if (now != shownSecond) {
            shownSecond = now;
            const std::int32_t stage = state.scan.stage;
            state.view->setScanProgress(stage);
            if (stage == kStageComplete) {
                break;
            }
        }
        clock.sleep(kProgressPollMilliseconds);
    }
    clock.sleep(kProgressLingerMilliseconds);
    if (!superseded()) {
        state.view->hideScanProgress();
    }
    return 1;
}

} // namespace torvane
