#pragma once

#include "reports/report_icons.h"

#include <cstdint>
#include <string>
#include <vector>

namespace torvane {

struct CompanyInfo;
struct DriveRecord;

// A report as it lies on the page. All lengths are points (1/72 inch).

/// Where every line begins, from the page's left edge.
inline constexpr int kReportLeft = 10;

/// Red, green and blue, each 0 to 1.
struct ReportColour {
    float red = 0;
    float green = 0;
    float blue = 0;

    bool operator==(const ReportColour&) const = default;
};

struct ReportLine {
    std::string text;   ///< in the system's code page
    int yFromTop = 0;   ///< the baseline lies `layoutSize` below
    int layoutSize = 0; ///< not always the font's size
    int fontSize = 0;
    ReportColour colour;

    bool operator==(const ReportLine&) const = default;
};

/// The place of an icon's lower left corner, from the page's right and top edges.
struct PlacedReportIcon {
    ReportIcon icon = ReportIcon::kGreen;
    int fromRight = 0;
    int fromTop = 0;

    bool operator==(const PlacedReportIcon&) const = default;
};

/// A line of the free part, which begins where it likes; points from the page's left edge.
struct FreeReportLine : ReportLine {
    int left = kReportLeft;

    bool operator==(const FreeReportLine&) const = default;
};

/// An icon of the free part, that wide and high; points.
struct FreeReportIcon : PlacedReportIcon {
    int size = 0;

    bool operator==(const FreeReportIcon&) const = default;
};

struct ReportPage {
    std::vector<ReportLine> lines; ///< from top to bottom
    std::vector<PlacedReportIcon> icons;
    std::vector<FreeReportLine> freeLines; ///< below all others
    std::vector<FreeReportIcon> freeIcons;
};

/// A day of the local calendar.
struct ReportDate {
    int year = 0;
    int month = 0; ///< 1 to 12
    int day = 0;   ///< 1 to 31
};

/// What every report is made from.
struct ReportFacts {
    const DriveRecord& drive;
    const CompanyInfo& company;
    ReportDate date;
    std::string interfaceName; ///< empty: not known
    std::string verdict;       ///< on the drive as a whole, in words; empty: none
    std::string wear;          ///< of an NVMe drive, in its own numbers; empty: not known
};

/// A drive with ATA SMART attributes: six sections, read tests, BitLocker.
[[nodiscard]] ReportPage composeAtaReport(const ReportFacts& facts);
/// A solid-state drive: read tests alone.
[[nodiscard]] ReportPage composeSsdReport(const ReportFacts& facts);
/// An NVMe drive: six sections, read tests, BitLocker.
[[nodiscard]] ReportPage composeNvmeReport(const ReportFacts& facts);
/// A drive without monitoring data: a sentence that says so.
[[nodiscard]] ReportPage composeNoDataReport(const ReportFacts& facts);

} // namespace torvane
