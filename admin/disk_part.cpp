#include "admin/disk_part.h"

#include "admin/disk_part_results.h"
#include "base/file_name_part.h"
#include "base/format.h"
#include "base/stdio_file.h"
#include "base/whole_file.h"
#include "monitoring/command_runner.h"
#include "state/app_state.h"
#include "state/event_log.h"
#include "state/job_thread.h"
#include "ui/prompts.h"
#include "ui/waiting.h"

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace torvane {

namespace {

/// One run of diskpart.
struct DiskPartScript {
    const char* fileName;
    std::string text;
    const char* resultsFileName;
};

constexpr const char* kMountResultsFileName = "DISKPART MountResults.txt";

DiskPartScript readOnlyTest(std::int32_t diskNumber) {
    return {"ReadOnlyTest.txt", formatText("select disk %d\n", diskNumber) + "attributes disk\n",
            "DISKPART Results.txt"};
}

DiskPartScript mountStatusQuery() {
    return {"MountStatusScript.txt", "automount\n", kMountResultsFileName};
}

DiskPartScript mountingDisable() {
    return {"DisableMountScript.txt", "automount disable\nautomount scrub\n", kMountResultsFileName};
}

DiskPartScript mountingEnable() {
    // Misspelt, and kept: users know the script that stays in their folder by this name.
    return {"EnbleMountScript.txt", "automount enable\nautomount scrub\n", kMountResultsFileName};
}

// What the two changes of the read-only attribute differ in.
struct ReadOnlyChange {
    const char* verb;        ///< in the script
    const char* resultsWord; ///< first word of the results file's name
    const char* failure;     ///< tail of the log row for a script that cannot be written
};

constexpr ReadOnlyChange kSetReadOnly{"set", "Enable", "ENABLING READ ONLY"};
// Misspelt, and kept: users search their logs for the row as it is.
constexpr ReadOnlyChange kClearReadOnly{"clear", "Disable", "DISBLING READ ONLY"};

/// Writes a script that changes a disk, and keeps everybody from writing to it as long as the result lives: another
/// Torvane in the same folder writes scripts of the same names. Null when the file does not hold `text` then.
UniqueFile writeGuarded(const char* fileName, std::string_view text) {
    if (!writeWholeFile(fileName, text)) {
        return {};
    }
    UniqueFile file{
        CreateFileA(fileName, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)};
    std::string held(text.size(), '\0');
    if (!file || sizeOfFile(file.get()) != text.size() || !readWholeFile(file.get(), held.size(), held.data()) ||
        held != text) {
        return {};
    }
    return file;
}

bool writeScript(const DiskPartScript& script) {
    if (writeWholeFile(script.fileName, script.text)) {
        return true;
    }
    // The text speaks of the read-only attribute whatever the script is for.
    LogEvent("ERROR", "Could not create DISKPART [%s] script. Setting READONLY to OFF", script.fileName);
    return false;
}

bool runScript(const DiskPartScript& script) {
    const std::string commandLine = formatText("diskpart /s %s", script.fileName);
    return PARSE_BuildDataFile(script.resultsFileName, commandLine.c_str()) != 0;
}

LoadedText loadResults(const DiskPartScript& script) {
    LoadedText results = PARSE_LoadFileIntoBuffer(script.resultsFileName);
    if (!results) {
        LogEvent("ERROR", "Could not Load File [%s] into buffer", script.resultsFileName);
    }
    return results;
}

LoadedText queryDiskPart(const DiskPartScript& script) {
    if (!writeScript(script)) {
        return nullptr;
    }
    if (!runScript(script)) {
        LogEvent("ERROR", "Could not BuildDataFile [%s]", script.resultsFileName);
        return nullptr;
    }
    return loadResults(script);
}

/// Runs the script and takes the status from its results. False leaves the status as it was: a disable request then
/// stays "in progress".
bool runMountingScript(AppState& state, const DiskPartScript& script) {
    if (!runScript(script)) {
        LogEvent("ERROR", "Could not BuildDataFile for [%s]", script.resultsFileName);
        return false;
    }
    const LoadedText results = loadResults(script);
    if (!results) {
        return false;
    }
    state.mountStatus = mountStatusAfterScrub(results.get());
    state.view->redrawDriveList();
    return true;
}

DWORD changeMounting(AppState& state, JobClaim& claim, const DiskPartScript& script) {
    if (!writeScript(script)) {
        return 0;
    }
    // Refused while a scan or another job on a drive is at work: then the change shows no flag of its own.
    static_cast<void>(claim.raise());
    if (!runMountingScript(state, script)) {
        // Kept: after a failed change the program goes on saying that a job runs, until somebody terminates it.
        claim.leaveRaised();
        return 0;
    }
    claim.lower();
    return 1;
}

/// Several changes may be at work at once.
bool startChange(AppState& state, DWORD (*change)(AppState&, JobClaim&)) {
    std::optional<JobClaim> claim = state.jobs.begin(JobKind::kMounting);
    return claim && startJobThread(std::move(*claim), "change of Drive Mounting",
                                   [&state, change](JobClaim& own) { return change(state, own); });
}

void showDisableOutcome(std::int32_t mountStatus) {
    if (mountStatus == kMountingDisabled) {
        prompts::inform("****** DISABLED ******", "Drive Mounting has been DISABLED");
    } else {
        prompts::inform("****** NOT DISABLED ******", "Drive Mounting has NOT been DISABLED");
    }
}

void showEnableOutcome(std::int32_t mountStatus) {
    std::fputs("Setting ENABLE Complete\n", stdout); // a diagnostic line, seen when started from a console
    if (mountStatus == kMountingEnabled) {
        prompts::inform("****** ENABLED ******", "Drive Mounting has been ENABLED");
    } else {
        // The odd blanks are kept: scripts that answer the box know its text.
        prompts::inform("****** NOT ENABLED ******", "Drive Mounting hasNOT  been ENABLED");
    }
}

/// What a test of the attribute told.
struct ReadOnlyAnswer {
    bool loaded = false; ///< the results were read
    bool readOnly = false;
    bool writable = false;
};

ReadOnlyAnswer testReadOnly(MainView& view, DriveRecord& drive) {
    drive.readOnly = 1;
    const LoadedText results = queryDiskPart(readOnlyTest(drive.driveNumber));
    if (!results) {
        return {};
    }
    const ReadOnlyAnswer answer{
        .loaded = true, .readOnly = reportsReadOnlyDisk(results.get()), .writable = reportsWritableDisk(results.get())};
    if (answer.writable) {
        drive.readOnly = 0;
    }
    view.redrawDriveList();
    return answer;
}

/// The model and the serial number stand in the name as the drive tells them, as far as a file name can hold them.
std::string readOnlyResultsFileName(const ReadOnlyChange& change, const DriveRecord& drive) {
    constexpr std::size_t kLongestPart = 80;
    return formatText("%s RO Results DISK [%s] - [%s].txt", change.resultsWord,
                      fileNamePart(drive.model.view(), kLongestPart).c_str(),
                      fileNamePart(drive.serialNumber.view(), kLongestPart).c_str());
}

/// None when the script could not be written.
std::optional<ReadOnlyAnswer> runReadOnlyChange(MainView& view, DriveRecord& drive, const ReadOnlyChange& change) {
    constexpr const char* kScriptFileName = "ScriptReadOnly.txt";
    const UniqueFile script = writeGuarded(
        kScriptFileName, formatText("select disk %d\nattributes disk %s readonly\n", drive.driveNumber, change.verb));
    if (!script) {
        LogEvent("ERROR", "Could not create DISKPART [%s] script. %s", kScriptFileName, change.failure);
        return std::nullopt;
    }
    // Unchecked: the test that follows tells what came of it.
    static_cast<void>(
        PARSE_BuildDataFile(readOnlyResultsFileName(change, drive).c_str(), "diskpart /s ScriptReadOnly.txt"));
    return testReadOnly(view, drive);
}

int reportUncleaned(const DriveRecord& drive) {
    // "nore" here and below is kept: users search their logs for the rows as they are.
    LogEvent("ERROR", "Could nore VERIFY partition CLEAR for [%s]", drive.devicePath.c_str());
    return 0;
}

} // namespace

int DP_TestReadOnly(MainView& view, DriveRecord& drive) {
    return testReadOnly(view, drive).loaded ? 1 : 0;
}

std::int32_t DP_GetMountStatus(AppState& state) {
    const auto results = std::make_shared<LoadedText>();
    if (!waiting::run("diskpart", [results] { *results = queryDiskPart(mountStatusQuery()); }) || !*results) {
        return 0;
    }
    const MountStatus status = mountStatusInReport(results->get());
    state.mountStatus = status;
    state.view->redrawDriveList();
    return status;
}

std::int32_t DP_SetReadOnly(MainView& view, DriveRecord& drive) {
    return runReadOnlyChange(view, drive, kSetReadOnly) ? drive.readOnly : 0;
}

std::int32_t DP_ClearReadOnly(MainView& view, DriveRecord& drive) {
    return runReadOnlyChange(view, drive, kClearReadOnly) ? drive.readOnly : 0;
}

bool changeReadOnly(MainView& view, DriveRecord& drive, bool wanted) {
    // An image file stands for no disk of the system: its number 0 is another disk's.
    if (drive.recordKind == kRecordKindImageFile) {
        return false;
    }
    const auto answer = runReadOnlyChange(view, drive, wanted ? kSetReadOnly : kClearReadOnly);
    return answer && (wanted ? answer->readOnly : answer->writable);
}

int DP_CleanDisk(const DriveRecord& drive) {
    constexpr const char* kScriptFileName = "DPCleanDiskScript.txt";
    constexpr const char* kResultsFileName = "DISKPART Clean Results.txt";
    // An image file stands for no disk of the system: its number 0 is another disk's.
    if (drive.recordKind == kRecordKindImageFile) {
        return reportUncleaned(drive);
    }
    const UniqueFile script = writeGuarded(kScriptFileName, formatText("select disk %d\nclean\n", drive.driveNumber));
    if (!script) {
        LogEvent("ERROR", "Could not create diskpart script file %s", kScriptFileName);
        return 0;
    }
    const bool ran = PARSE_BuildDataFile(kResultsFileName, "diskpart /s DPCleanDiskScript.txt") != 0;
    const LoadedText results = PARSE_LoadFileIntoBuffer(kResultsFileName);
    if (!results) {
        LogEvent("ERROR", "Could nore LOAD [%s] to TEST for CLEAR", kResultsFileName);
        return 0;
    }
    // Without a run the results are those of an earlier one.
    if (!ran || !reportsCleanedDisk(results.get())) {
        return reportUncleaned(drive);
    }
    return 1;
}

DWORD DP_DisableMountingWorker(AppState& state, JobClaim& claim) {
    return changeMounting(state, claim, mountingDisable());
}

DWORD DP_EnableMountingWorker(AppState& state, JobClaim& claim) {
    return changeMounting(state, claim, mountingEnable());
}

bool startEnableMounting(AppState& state) {
    return startChange(state, DP_EnableMountingWorker);
}

void onDisableMounting(AppState& state) {
    if (DP_GetMountStatus(state) == kMountingDisabled &&
        !prompts::ask("***** MOUNTING DISABLED -- REBOOT *****",
                      "Mounting Status is already DISABLED. If not working TRY REBOOTING for mounting status change to "
                      "register. Continue DISABLE anyway?")) {
        return;
    }
    const std::int32_t known = state.mountStatus.exchange(kMountingChanging);
    if (!startChange(state, DP_DisableMountingWorker)) {
        state.mountStatus = known;
        return;
    }
    state.view->startTimer(kDisableMountTimer, kMountTimerMilliseconds);
}

void onEnableMounting(AppState& state) {
    if (DP_GetMountStatus(state) == kMountingEnabled &&
        !prompts::ask("***** MOUNTING ENABLED -- REBOOT *****",
                      "Mounting Status is already ENABLED. If not working TRY REBOOTING for mounting status change to "
                      "register. Continue ENABLE anyway?")) {
        return;
    }
    // Unlike the disable command, the status is not set to "changing": the first tick reports whatever the check left.
    if (startEnableMounting(state)) {
        state.view->startTimer(kEnableMountTimer, kMountTimerMilliseconds);
    }
}

void onMountTimer(AppState& state, int timerId) {
    const std::int32_t status = state.mountStatus;
    if (status == kMountingChanging || (timerId != kEnableMountTimer && timerId != kDisableMountTimer)) {
        return;
    }
    // The timer first, lest a second box opens on top of this one.
    state.view->stopTimer(timerId);
    if (timerId == kDisableMountTimer) {
        showDisableOutcome(status);
    } else {
        showEnableOutcome(status);
    }
}

} // namespace torvane
