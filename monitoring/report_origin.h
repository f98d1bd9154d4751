#pragma once

#include "records/device_identity.h"

#include <cstdint>
#include <string_view>

namespace torvane {

struct SmartScanState;

/// Which scan a report "PHYS<n>.txt" that lies in the folder is of.
enum class ReportOrigin {
    kThisScan,
    kEarlierScan,
    kUnclear, ///< not made by this program, and written too close to the scan's start to be called older
};

/// `written`: the file's last write, as FILETIME.
[[nodiscard]] ReportOrigin originOfReport(const SmartScanState& scan, int driveNumber, std::uint64_t written);

/// True when the report may stand for the drive. One of this scan always does, whatever serial number it gives: a
/// bridge tells its own. One of an earlier scan has to give the serial number that the drive itself tells, since the
/// number may have been another drive's; one of unclear origin must not give another.
[[nodiscard]] bool isReportOf(const DeviceIdentity& device, ReportOrigin origin, std::string_view reportedSerial);

} // namespace torvane
