#include "reports/report_icons.h"

#include "health/counter_levels.h"

namespace torvane {

namespace {

ReportIcon iconOfLevel(std::uint32_t level) {
    switch (level) {
    case 0:
        return ReportIcon::kGreen;
    case 1:
        return ReportIcon::kBlue;
    case 2:
        return ReportIcon::kYellow;
    default:
        return ReportIcon::kRed;
    }
}

} // namespace

const char* reportIconFile(ReportIcon icon) {
    switch (icon) {
    case ReportIcon::kGreen:
        return "report-green-32.png";
    case ReportIcon::kBlue:
        return "report-blue-32.png";
    case ReportIcon::kYellow:
        return "report-yellow-32.png";
    case ReportIcon::kRed:
        break;
    }
    return "report-red-32.png";
}

ReportIcon counterIcon(Counter counter, std::int32_t value) {
    // A negative count, which only a malformed report holds, is red on paper; the lamp, which shows the largest
    // counter, passes over it. Hours are never red.
    if (value < 0 && counter != Counter::kPowerOnHours) {
        return ReportIcon::kRed;
    }
    return iconOfLevel(counterLevel(counter, value));
}

ReportIcon dataWrittenIcon(std::int64_t gigabytes) {
    if (gigabytes < 70'000) {
        return ReportIcon::kGreen;
    }
    return gigabytes < 150'000 ? ReportIcon::kBlue : ReportIcon::kYellow;
}

ReportIcon availableSpareIcon(std::int32_t spare, std::int32_t threshold) {
    return spare > threshold ? ReportIcon::kGreen : ReportIcon::kYellow;
}

ReportIcon warningFlagIcon(bool set) {
    return set ? ReportIcon::kYellow : ReportIcon::kGreen;
}

} // namespace torvane
