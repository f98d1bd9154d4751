#pragma once

#include "records/drive_record.h"

namespace torvane {

/// Opens "\\.\PhysicalDrive<driveNumber>" for reading and writing, shared for both. Returns null on failure. The caller
/// owns the handle: jobs that do I/O of their own open a second handle here and leave the record's alone.
[[nodiscard]] NativeHandle openDriveByNumber(int driveNumber);

/// Builds the record of physical drive `driveNumber` (0 to 19), its device handle open. Returns null, with nothing left
/// open, when the drive does not exist, does not tell its geometry (both silently) or sits on an unsupported bus (one
/// "FAILURE" log row).
[[nodiscard]] DriveRecordPtr ProbePhysicalDrive(int driveNumber);

/// What a probe has come upon.
struct ProbedDrive {
    DriveRecordPtr record;
    bool isUnsupported = false; ///< a drive is there, on an unsupported bus
};

/// The same, and tells a number without a drive from one whose drive is left out.
[[nodiscard]] ProbedDrive probeDriveNumber(int driveNumber);

/// Asks the drive behind the record's handle for its ATA identify block and takes model, serial number and firmware
/// from it. Returns 1, or 0 when the request failed and the record keeps the texts it had.
int identifyOverAta(DriveRecord& record);

} // namespace torvane
