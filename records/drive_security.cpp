#include "records/drive_security.h"

#include "records/drive_record.h"

#include <string_view>

namespace torvane {

namespace {

/// By the line of smartctl's report that tells the drive's security.
bool isLocked(std::string_view report) {
    const std::size_t line = report.find("ATA Security is:");
    return line != std::string_view::npos &&
           report.substr(line, report.find('\n', line) - line).find("**LOCKED**") != std::string_view::npos;
}

std::string warningOf(const DriveRecord* drive, const std::string& which) {
    if (drive == nullptr || drive->securityEnabled == 0) {
        return {};
    }
    return isLocked(drive->smartText)
               ? which + " is LOCKED (ATA security): every copy fails until its password is entered."
               : which + " has an ATA password: it locks when it loses power, and the copy fails.";
}

} // namespace

std::string securityWarning(const DriveRecord* source, const DriveRecord* destination) {
    const std::string ofSource = warningOf(source, "The source");
    return ofSource.empty() ? warningOf(destination, "The destination") : ofSource;
}

} // namespace torvane
