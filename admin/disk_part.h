#pragma once

#include "admin/changed_drive.h"

#include <cstdint>

namespace torvane {

struct DriveRecord;
class MainView;

// Changes of a disk by the system's diskpart tool. Every operation writes a small script into the current folder, runs
// "diskpart /s <script>" with its output captured to a results file, and reads the outcome from that file. Scripts and
// results stay on disk as a record of what was done. Each failure gives an "ERROR" log row, behind that of the command
// runner when it was this that failed. All of them wait for diskpart on the calling thread.
//
// diskpart selects a disk by its number, which another disk may have got since the drives were loaded. So each change
// asks right before diskpart is run whether the disk of that number is still the record's, and takes the outcome from
// the drive itself where it tells: diskpart prints in the system's language.

/// Refreshes `drive.readOnly` (1: read-only or not known) and redraws the drive list. Returns 1 when the results were
/// read, 0 on a failure.
int DP_TestReadOnly(MainView& view, DriveRecord& drive);

/// What diskpart tells of a disk's read-only attribute.
struct ReadOnlyAnswer {
    bool loaded = false;   ///< the results were read
    bool readOnly = false; ///< they say so
    bool writable = false; ///< they say so
};

/// The two halves of DP_TestReadOnly, for whoever asks on another thread than the one that has the record: asks
/// diskpart, and puts the answer into the record.
[[nodiscard]] ReadOnlyAnswer askReadOnly(std::int32_t diskNumber);
void takeReadOnlyAnswer(MainView& view, DriveRecord& drive, const ReadOnlyAnswer& answer);

/// Sets or clears the drive's read-only attribute (never an image file's), refreshes `drive.readOnly` as
/// DP_TestReadOnly does, then from what the system tells, and returns it; 0 when the script could not be written. Two
/// of the program's named operations; no command calls them.
std::int32_t DP_SetReadOnly(MainView& view, DriveRecord& drive);
std::int32_t DP_ClearReadOnly(MainView& view, DriveRecord& drive);

/// What these two do, for the commands. Made is what the system tells to be as wanted, or diskpart where the system
/// does not tell; never for an image file, for which diskpart is not asked.
DiskChange changeReadOnly(MainView& view, DriveRecord& drive, bool wanted);

/// Wipes the drive's partition table, so that the system lets go of its volumes and takes raw writes. Returns 1 when
/// that was done; otherwise 0, after one "ERROR" log row.
int DP_CleanDisk(DriveRecord& drive);

/// What it does, for whoever needs to know why not. Made is what leaves no partition in the drive's table, or what
/// diskpart reports to be done where the drive does not tell its table. After a run, whatever came of it, the table
/// that is there is the drive's own; but one with partitions that names another disk is a medium's that was put in
/// meanwhile.
DiskChange cleanDrive(DriveRecord& drive);

} // namespace torvane
