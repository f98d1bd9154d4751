#pragma once

#include "records/bitlocker_entry.h"

namespace torvane {

struct DriveRecord;
struct ScanState;
struct VolumeTable;

// Detection of BitLocker volumes by the system's PowerShell module. The calling thread waits for PowerShell without a
// time-out. A volume whose command or output fails is skipped: the command runner has logged why.
//
// A recovery password goes into the drive's record, and from there into the drive's report, into the scan dialog's list
// and "BITLOCKER.db", and nowhere else: no log row ever holds one, and "BITLOCKER.txt", into which PowerShell printed
// it, is emptied once it was read, or PowerShell was ended.

/// The list of the scan dialog, rows counting from 0.
class BitLockerRows {
  public:
    virtual ~BitLockerRows() = default;
    virtual void clear() = 0;
    /// Writes the whole row, which is appended when it is the next one.
    virtual void setRow(int row, const char* volume, const char* status, const char* key) = 0;
};

/// Checks every volume of the active drive, replaces the drive's entries and fills the list. Does nothing without one
/// (null). On the window's thread, which goes on answering; a user who leaves ends it at the volume that he left. An
/// eleventh volume is shown in the list but not kept. A box at the end names the volumes of which Windows did not tell,
/// and why.
void BL_ScanActiveDrive(DriveRecord* drive, const VolumeTable& volumes, BitLockerRows& rows);

/// Checks every volume of the volume table, adds to the entries of the drives concerned and appends each recovery
/// password to "BITLOCKER.db". Every run appends again. An eleventh volume's password is appended but not kept.
/// One of the program's named operations; no command calls it.
void BL_SaveRecoveryKeys(const ScanState& scan);

/// Appends the record to "BITLOCKER.db" in the current folder, which is created when absent. Returns 1; 0 after one
/// "ERROR" log row. Only an append to an existing file gives a "SUCCESS" row.
int BL_AppendRecord(const BitLockerVolumeEntry& entry);

} // namespace torvane
