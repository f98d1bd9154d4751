#include "monitoring/report_plan.h"

#include "monitoring/device_listing.h"
#include "monitoring/text_scanners.h"

#include <algorithm>
#include <array>

namespace torvane {

std::vector<PlannedReport> planReports(const char* listing) {
    std::vector<PlannedReport> plan;
    LineCursor cursor(listing);
    std::array<char, kListingLineRoom> line{};
    ListedDevice device;
    for (int number = 0; cursor.next(line) == 1; ++number) {
        readListedDevice(line.data(), device);
        const bool named = !device.name.empty() && device.driveNumber >= 0;
        if (named && std::ranges::find(plan, device.driveNumber, &PlannedReport::driveNumber) == plan.end()) {
            plan.push_back({number, device.driveNumber, reportCommandLine(device)});
        }
    }
    return plan;
}

} // namespace torvane
