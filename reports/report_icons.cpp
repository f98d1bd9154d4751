#include "reports/report_icons.h"

namespace torvane {

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

ReportIcon powerOnHoursIcon(std::int32_t hours) {
    constexpr std::int32_t kHoursPerYear = 8760;
    if (hours < 3 * kHoursPerYear) {
        return ReportIcon::kGreen;
    }
    return hours < 5 * kHoursPerYear ? ReportIcon::kBlue : ReportIcon::kYellow;
}

ReportIcon reallocatedSectorsIcon(std::int32_t sectors) {
    if (sectors == 0) {
        return ReportIcon::kGreen;
    }
    // A negative count is one that has outgrown 31 bits.
    return sectors > 0 && sectors < 50 ? ReportIcon::kYellow : ReportIcon::kRed;
}

ReportIcon errorCountIcon(std::int32_t count) {
    if (count < 0 || count >= 10) {
        return ReportIcon::kRed;
    }
    if (count == 0) {
        return ReportIcon::kGreen;
    }
    return count < 5 ? ReportIcon::kBlue : ReportIcon::kYellow;
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
