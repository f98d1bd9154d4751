#include "window/drives_heading.h"

#include "discovery/drive_summary.h"

namespace torvane {

std::string drivesHeading(const DrivesKnown& known) {
    if (!known.found) {
        return "&Attached drives";
    }
    std::string heading =
        "&Attached: " + std::to_string(known.found->shown) + (known.found->shown == 1 ? " drive" : " drives");
    if (known.found->notShown != 0) {
        heading += ", " + std::to_string(known.found->notShown) + " not shown: see log";
    }
    if (known.haveChanged) {
        heading += ". Drives have changed: Load Drives";
    }
    if (known.reportNamesNobody) {
        heading += ". The report names no company: see \"Company Information\"";
    }
    return heading;
}

std::string activeDriveText(const DriveRecord& drive) {
    return "Active: " + driveNames(drive);
}

std::string emptyListText(const DrivesKnown& known) {
    if (known.isScanning) {
        return {};
    }
    return known.found ? "No drives were found" : "Press Load Drives";
}

} // namespace torvane
