#include "monitoring/report_origin.h"

#include "state/smart_scan_state.h"

#include <cstddef>

namespace torvane {

namespace {

// FAT keeps the time of the last write in units of two seconds ("FAT: General Overview of On-Disk Format", directory
// entry); the system's other clocks differ by less.
constexpr std::uint64_t kCoarsestFileTime = 2 * 10'000'000ULL;

} // namespace

ReportOrigin originOfReport(const SmartScanState& scan, int driveNumber, std::uint64_t written) {
    if (driveNumber >= 0 && driveNumber < kMaxNamedDrives) {
        const MadeReport& made = scan.reports[static_cast<std::size_t>(driveNumber)];
        if (made.scan != 0 && made.scan == scan.scan) {
            return ReportOrigin::kThisScan;
        }
        if (made.scan != 0 && made.written == written) {
            return ReportOrigin::kEarlierScan;
        }
    }
    // One of the future was made while the clock was ahead.
    const bool young = written + kCoarsestFileTime >= scan.started && written <= scan.started + kCoarsestFileTime;
    return young ? ReportOrigin::kUnclear : ReportOrigin::kEarlierScan;
}

bool isReportOf(const DeviceIdentity& device, ReportOrigin origin, std::string_view reportedSerial) {
    switch (origin) {
    case ReportOrigin::kThisScan:
        return true;
    case ReportOrigin::kUnclear:
        return reportedSerial.empty() || deviceSerialNumber(device).empty() || isSerialNumberOf(device, reportedSerial);
    default:
        return isSerialNumberOf(device, reportedSerial);
    }
}

} // namespace torvane
