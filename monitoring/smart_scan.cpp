#include "monitoring/smart_scan.h"

#include "base/format.h"
#include "base/tool_watch.h"
#include "monitoring/command_runner.h"
#include "monitoring/device_listing.h"
#include "monitoring/report_origin.h"
#include "monitoring/reports_ahead.h"
#include "monitoring/smart_report.h"
#include "monitoring/text_scanners.h"
#include "state/event_log.h"
#include "state/smart_scan_state.h"

#include <windows.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace torvane {
namespace {

constexpr const char* kListingFile = "Drive Data File.txt";
constexpr const char* kListingCommand = "smartctl.exe --scan";

using Line = std::array<char, kListingLineRoom>;

std::string reportFileName(int driveNumber) {
    return formatText("PHYS%d.txt", driveNumber);
}

/// What the tool printed into the file; `built` tells whether it did. Null after an "INVALID" log row.
LoadedText loadPrinted(const char* fileName, int built) {
    if (built == 0) {
        LogEvent("INVALID", "Could not build [%s]", fileName);
        return nullptr;
    }
    LoadedText text = PARSE_LoadFileIntoBuffer(fileName);
    if (!text) {
        LogEvent("INVALID", "Could not load [%s]", fileName);
    }
    return text;
}

std::uint64_t ticksOf(const FILETIME& time) {
    return (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
}

std::uint64_t now() {
    FILETIME time{};
    GetSystemTimeAsFileTime(&time);
    return ticksOf(time);
}

/// 0 when the system does not tell.
std::uint64_t lastWriteOf(const std::string& fileName) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    return GetFileAttributesExA(fileName.c_str(), GetFileExInfoStandard, &data) != 0 ? ticksOf(data.ftLastWriteTime)
                                                                                     : 0;
}

/// A line of the listing.
struct ListingLine {
    int number; ///< from 0
    const char* text;
};

/// False when the device's report could not be made, which ends the scan.
bool makeReport(SmartScanState& scan, ReportsAhead& reports, const ListedDevice& device, const ListingLine& at) {
    const std::string fileName = reportFileName(device.driveNumber);
    const ToolSubject subject(driveSubject(device.driveNumber));
    const int built = reports.buildDataFile(at.number, fileName.c_str(), reportCommandLine(device).c_str());
    const LoadedText report = loadPrinted(fileName.c_str(), built);
    if (!report) {
        return false;
    }
    scan.reports.at(static_cast<std::size_t>(device.driveNumber)) = {.scan = scan.scan,
                                                                     .written = lastWriteOf(fileName)};
    Line line{};
    if (PARSE_FindLine(report.get(), line, kSmartReadFailed) >= 0) {
        LogEvent("INVALID", "Invalid Device found at [%s]", at.text);
    }
    return true;
}

void keepName(SmartScanState& smart, const ListedDevice& device) {
    if (!device.name.empty() && device.driveNumber >= 0 && device.driveNumber < kMaxNamedDrives) {
        smart.driveNames[static_cast<std::size_t>(device.driveNumber)].assign(device.name);
    }
}

void copyName(const SmartScanState& smart, int driveNumber, DriveRecord& record) {
    record.driveName.clear();
    if (driveNumber >= 0 && driveNumber < kMaxNamedDrives) {
        record.driveName = smart.driveNames[static_cast<std::size_t>(driveNumber)];
    }
}

void logFindings(const DriveRecord& record, const std::vector<AttributeFinding>& findings) {
    for (const AttributeFinding& finding : findings) {
        LogEvent("ERROR", "[%s] - [%s] Found Value [%d] in SMART Attribute [%s]", record.model.c_str(),
                 record.serialNumber.c_str(), finding.value, finding.attribute);
    }
}

/// 1 when the report of every drive in the listing was made.
int makeReports(SmartScanState& scan, const char* listing) {
    scan.deviceLineCount = 0;
    scan.driveNames = {};
    ReportsAhead reports(listing);
    LineCursor cursor(listing);
    Line line{};
    ListedDevice device;
    while (cursor.next(line) == 1) {
        readListedDevice(line.data(), device);
        keepName(scan, device);
        const ListingLine at{.number = scan.deviceLineCount, .text = line.data()};
        if (device.driveNumber >= 0 && !makeReport(scan, reports, device, at)) {
            return 0;
        }
        ++scan.deviceLineCount; // every line counts, used or not
    }
    return 1;
}

} // namespace

int SmartScanDevices(SmartScanState& scan, const std::function<void()>& listed) {
    ++scan.scan;
    scan.started = now();
    const LoadedText listing = loadPrinted(kListingFile, PARSE_BuildDataFile(kListingFile, kListingCommand));
    listed();
    return listing ? makeReports(scan, listing.get()) : 0;
}

int SmartParseDrive(const SmartScanState& scan, DriveRecord& record, int driveNumber) {
    const std::string fileName = reportFileName(driveNumber);
    const LoadedText text = PARSE_LoadFileIntoBuffer(fileName.c_str());
    if (!text) {
        LogEvent("ERROR", "Could not load SMART [%s] File for Processing", fileName.c_str());
        return 0;
    }
    const ReportOrigin origin = originOfReport(scan, driveNumber, lastWriteOf(fileName));
    if (!isReportOf(record.device, origin, reportedSerialNumber(text.get()))) {
        LogEvent("ERROR", "%s is of an earlier scan and of another drive: not used", fileName.c_str());
        return 0;
    }
    record.smartText = text.get();
    record.smartLoaded = 1;
    std::vector<AttributeFinding> findings;
    if (parseSmartReport(record, findings) == 0) {
        return 0;
    }
    copyName(scan, driveNumber, record);
    logFindings(record, findings);
    return 1;
}

} // namespace torvane
