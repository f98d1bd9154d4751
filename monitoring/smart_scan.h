#pragma once

#include <functional>

namespace torvane {

struct SmartScanState;
struct DriveRecord;

/// Runs "smartctl.exe --scan" into "Drive Data File.txt", then writes the full report of every listed drive into
/// "PHYS<physical drive number>.txt", all in the current directory. Sets `scan`. Blocks until the tools end; calls
/// `listed` once, when the first has. The reports are made beside each other, and come out as if one had been made
/// after the other (monitoring/reports_ahead.h).
///
/// Returns 1 when every report was written; 0 after one "INVALID" log row (behind the runner's own) when the tool could
/// not be run or a file could not be loaded: the drives behind it get no report. A report that tells of a failed SMART
/// read logs one "INVALID" row and the scan goes on.
int SmartScanDevices(
    SmartScanState& scan, const std::function<void()>& listed = [] {});

/// Loads "PHYS<driveNumber>.txt" into the record and fills the record's monitoring fields from it. One "ERROR" log row
/// for every error counter that is not zero.
///
/// Returns 1 when the report was read; 0 with the record unchanged, after an "ERROR" log row of its own behind the
/// loader's, when the file cannot be loaded, or after one such row when it was left by an earlier scan and does not
/// have the drive's own serial number; 0 with `smartLoaded` 0 and SmartType "none" when the report tells of a failed
/// SMART read.
int SmartParseDrive(const SmartScanState& scan, DriveRecord& record, int driveNumber);

} // namespace torvane
