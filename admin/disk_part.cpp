#include "admin/disk_part.h"

#include "admin/disk_part_results.h"
#include "admin/disk_part_script.h"
#include "base/file_name_part.h"
#include "base/format.h"
#include "discovery/disk_attributes.h"
#include "discovery/disk_identity.h"
#include "discovery/table_reading.h"
#include "records/drive_texts.h"
#include "state/event_log.h"
#include "state/main_view.h"

#include <windows.h>

#include <optional>
#include <string>

namespace torvane {

namespace {

DiskPartScript readOnlyTest(std::int32_t diskNumber) {
    return {"ReadOnlyTest.txt", formatText("select disk %d\n", diskNumber) + "attributes disk\n",
            "DISKPART Results.txt"};
}

DiskPartScript cleanScript(std::int32_t diskNumber) {
    return {"DPCleanDiskScript.txt", formatText("select disk %d\nclean\n", diskNumber), "DISKPART Clean Results.txt"};
}

/// What the two changes of the read-only attribute differ in.
struct ReadOnlyChange {
    bool wanted;
    const char* verb;        ///< in the script
    const char* resultsWord; ///< first word of the results file's name
    const char* failure;     ///< tail of the log row for a script that cannot be written
};

constexpr ReadOnlyChange kSetReadOnly{true, "set", "Enable", "ENABLING READ ONLY"};
// Misspelt, and kept: users search their logs for the row as it is.
constexpr ReadOnlyChange kClearReadOnly{false, "clear", "Disable", "DISBLING READ ONLY"};

/// The model and the serial number stand in the name as the drive tells them, as far as a file name can hold them.
std::string readOnlyResultsFileName(const ReadOnlyChange& change, const DriveRecord& drive) {
    constexpr std::size_t kLongestPart = 80;
    return formatText("%s RO Results DISK [%s] - [%s].txt", change.resultsWord,
                      fileNamePart(drive.model.view(), kLongestPart).c_str(),
                      fileNamePart(drive.serialNumber.view(), kLongestPart).c_str());
}

DiskPartScript readOnlyScript(const ReadOnlyChange& change, const DriveRecord& drive) {
    return {"ScriptReadOnly.txt",
            formatText("select disk %d\nattributes disk %s readonly\n", drive.driveNumber, change.verb),
            readOnlyResultsFileName(change, drive)};
}

ReadOnlyAnswer testReadOnly(MainView& view, DriveRecord& drive) {
    drive.readOnly = 1; // not known
    const ReadOnlyAnswer answer = askReadOnly(drive.driveNumber);
    takeReadOnlyAnswer(view, drive, answer);
    return answer;
}

void keepReadOnly(MainView& view, DriveRecord& drive, bool readOnly) {
    const std::int32_t flag = readOnly ? 1 : 0;
    if (drive.readOnly != flag) {
        drive.readOnly = flag;
        view.redrawDriveList();
    }
}

DiskChange madeIf(bool made) {
    return made ? DiskChange::kMade : DiskChange::kNotMade;
}

DiskChange refuseChangedDrive(const DriveRecord& drive) {
    LogEvent("ERROR", "[%s] is not the drive that was loaded any more: diskpart was not run", drive.devicePath.c_str());
    return DiskChange::kOtherDrive;
}

DiskChange reportGoneDrive(const DriveRecord& drive) {
    LogEvent("ERROR", "[%s] is not the drive that was loaded any more: what diskpart has changed is not known",
             drive.devicePath.c_str());
    return DiskChange::kDriveLost;
}

/// What came of the change, by the test of diskpart and by the system, which has the last word where it tells.
DiskChange readOnlyOutcome(MainView& view, DriveRecord& drive, bool wanted) {
    const ReadOnlyAnswer answer = testReadOnly(view, drive);
    if (!isStillTheProbedDisk(drive)) {
        return reportGoneDrive(drive);
    }
    if (const std::optional<bool> told = readReadOnlyAttribute(drive.handle)) {
        keepReadOnly(view, drive, *told);
        return madeIf(*told == wanted);
    }
    return madeIf(wanted ? answer.readOnly : answer.writable);
}

/// None when the script could not be written.
std::optional<DiskChange> runReadOnlyChange(MainView& view, DriveRecord& drive, const ReadOnlyChange& change) {
    // An image file stands for no disk of the system: its number 0 is another disk's.
    if (drive.recordKind == kRecordKindImageFile) {
        return DiskChange::kNotMade;
    }
    const DiskPartScript script = readOnlyScript(change, drive);
    const HeldScript held = writeHeld(script);
    if (!held) {
        LogEvent("ERROR", "Could not create DISKPART [%s] script. %s", script.fileName, change.failure);
        return std::nullopt;
    }
    if (!isStillTheProbedDisk(drive)) {
        return refuseChangedDrive(drive);
    }
    // Unchecked: the test that follows tells what came of it.
    static_cast<void>(runDiskPart(script));
    return readOnlyOutcome(view, drive, change.wanted);
}

DiskChange reportUncleaned(const DriveRecord& drive) {
    // "nore" here and below is kept: users search their logs for the rows as they are.
    LogEvent("ERROR", "Could nore VERIFY partition CLEAR for [%s]", drive.devicePath.c_str());
    return DiskChange::kNotMade;
}

/// The table as it is now. What is there is told from memory where nobody has looked since it was changed, so that one
/// that holds something is read anew from the disk before it is believed.
std::optional<PartitionTable> tableAfterClean(const DriveRecord& drive) {
    const std::optional<PartitionTable> table = readPartitionTable(drive.handle);
    if (!table || table->partitions == 0) {
        return table;
    }
    static_cast<void>(makeSystemReadTable(drive));
    return readPartitionTable(drive.handle);
}

/// True for a table that a clean, whatever came of it, may have left: another one with partitions is another medium's.
bool mayBeLeft(const std::optional<PartitionTable>& before, const std::optional<PartitionTable>& after) {
    return !before || !after || after->partitions == 0 || nameSameDisk(*before, *after);
}

/// What came of a run of the clean; `reported` is what its output says, none when that could not be read.
DiskChange cleanOutcome(DriveRecord& drive, const std::optional<PartitionTable>& before,
                        std::optional<CleanReport> reported) {
    const std::optional<PartitionTable> after = tableAfterClean(drive);
    if (mayBeLeft(before, after)) {
        rememberPartitionTable(drive);
    }
    if (!isStillTheProbedDisk(drive)) {
        return reportGoneDrive(drive);
    }
    if (!reported) {
        return DiskChange::kNotMade;
    }
    return wasCleaned(before, after, *reported) ? DiskChange::kMade : reportUncleaned(drive);
}

/// None when the results cannot be read. Without a whole run they are those of an earlier one.
std::optional<CleanReport> reportOfClean(const DiskPartScript& script, bool ran) {
    const LoadedText results = loadResults(script);
    if (!results) {
        LogEvent("ERROR", "Could nore LOAD [%s] to TEST for CLEAR", script.resultsFileName.c_str());
        return std::nullopt;
    }
    return ran ? cleanReport(results.get()) : CleanReport::kNotRun;
}

DiskChange runClean(DriveRecord& drive) {
    const DiskPartScript script = cleanScript(drive.driveNumber);
    const HeldScript held = writeHeld(script);
    if (!held) {
        LogEvent("ERROR", "Could not create diskpart script file %s", script.fileName);
        return DiskChange::kNotMade;
    }
    const std::optional<PartitionTable> before = readPartitionTable(drive.handle);
    if (!isStillTheProbedDisk(drive)) {
        return refuseChangedDrive(drive);
    }
    const bool ran = runDiskPart(script);
    return cleanOutcome(drive, before, reportOfClean(script, ran));
}

const char* endText(DiskChange end) {
    switch (end) {
    case DiskChange::kMade:
        return "done";
    case DiskChange::kNotMade:
        return "NOT done";
    default:
        return changedDriveConsequence(end);
    }
}

/// The change with its rows in the day's log.
template <typename Change>
DiskChange logged(const char* name, const DriveRecord& drive, Change change) {
    const std::string job = formatText("%s of %s", name, jobDriveText(drive).c_str());
    LogToFile(kJobCategory, "%s begins", job.c_str());
    const DiskChange end = change();
    LogToFile(kJobCategory, "%s ended: %s", job.c_str(), endText(end));
    return end;
}

} // namespace

ReadOnlyAnswer askReadOnly(std::int32_t diskNumber) {
    const LoadedText results = queryDiskPart(readOnlyTest(diskNumber));
    if (!results) {
        return {};
    }
    return {
        .loaded = true, .readOnly = reportsReadOnlyDisk(results.get()), .writable = reportsWritableDisk(results.get())};
}

void takeReadOnlyAnswer(MainView& view, DriveRecord& drive, const ReadOnlyAnswer& answer) {
    drive.readOnly = answer.writable ? 0 : 1;
    if (answer.loaded) {
        view.redrawDriveList();
    }
}

int DP_TestReadOnly(MainView& view, DriveRecord& drive) {
    return testReadOnly(view, drive).loaded ? 1 : 0;
}

std::int32_t DP_SetReadOnly(MainView& view, DriveRecord& drive) {
    return runReadOnlyChange(view, drive, kSetReadOnly) ? drive.readOnly : 0;
}

std::int32_t DP_ClearReadOnly(MainView& view, DriveRecord& drive) {
    return runReadOnlyChange(view, drive, kClearReadOnly) ? drive.readOnly : 0;
}

DiskChange changeReadOnly(MainView& view, DriveRecord& drive, bool wanted) {
    return logged(wanted ? "Set Read-Only" : "Clear Read-Only", drive, [&] {
        return runReadOnlyChange(view, drive, wanted ? kSetReadOnly : kClearReadOnly).value_or(DiskChange::kNotMade);
    });
}

int DP_CleanDisk(DriveRecord& drive) {
    return cleanDrive(drive) == DiskChange::kMade ? 1 : 0;
}

DiskChange cleanDrive(DriveRecord& drive) {
    // An image file stands for no disk of the system: its number 0 is another disk's.
    if (drive.recordKind == kRecordKindImageFile) {
        return reportUncleaned(drive);
    }
    return logged("Clean Disk", drive, [&] { return runClean(drive); });
}

} // namespace torvane
