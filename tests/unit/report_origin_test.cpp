#include "monitoring/report_origin.h"

#include "state/smart_scan_state.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

constexpr std::uint64_t kSecond = 10'000'000;
constexpr std::uint64_t kStart = 1000 * kSecond;

/// The second scan of a program whose scans have both made the report of drive 1, the first alone that of drive 2.
SmartScanState secondScan() {
    SmartScanState scan;
    scan.scan = 2;
    scan.started = kStart;
    scan.reports[1] = {.scan = 2, .written = kStart + kSecond};
    scan.reports[2] = {.scan = 1, .written = kStart - kSecond};
    return scan;
}

TEST(ReportOrigin, AReportThatThisScanMadeIsItsOwnWhateverItsTime) {
    EXPECT_EQ(originOfReport(secondScan(), 1, kStart + kSecond), ReportOrigin::kThisScan);
    EXPECT_EQ(originOfReport(secondScan(), 1, kStart + 3 * kSecond), ReportOrigin::kThisScan);
    EXPECT_EQ(originOfReport(secondScan(), 1, kStart - 9 * kSecond), ReportOrigin::kThisScan);
}

TEST(ReportOrigin, AReportThatAnEarlierScanMadeIsThatScansHoweverYoung) {
    EXPECT_EQ(originOfReport(secondScan(), 2, kStart - kSecond), ReportOrigin::kEarlierScan);
}

TEST(ReportOrigin, AReportFromElsewhereIsJudgedByItsTime) {
    for (const int drive : {0, 2, 25, 26}) { // 2: written anew since the earlier scan made it
        EXPECT_EQ(originOfReport(secondScan(), drive, kStart - 2 * kSecond - 1), ReportOrigin::kEarlierScan) << drive;
        EXPECT_EQ(originOfReport(secondScan(), drive, kStart - 2 * kSecond), ReportOrigin::kUnclear) << drive;
        EXPECT_EQ(originOfReport(secondScan(), drive, kStart + 2 * kSecond), ReportOrigin::kUnclear) << drive;
        EXPECT_EQ(originOfReport(secondScan(), drive, kStart + 2 * kSecond + 1), ReportOrigin::kEarlierScan)
            << "made while the clock was ahead";
    }
}

DeviceIdentity deviceOf(const char* serial) {
    return {.descriptor = {}, .identifySerial = serial, .mediaChanges = {}};
}

TEST(ReportOrigin, AnEarlierScansReportNeedsTheDrivesOwnSerialNumber) {
    const auto isUsed = [](const char* own, const char* reported) {
        return isReportOf(deviceOf(own), ReportOrigin::kEarlierScan, reported);
    };
    EXPECT_TRUE(isUsed("Z9AB12CD", "Z9AB12CD"));
    EXPECT_FALSE(isUsed("Z9AB12CD", "W1F00000"));
    EXPECT_FALSE(isUsed("Z9AB12CD", ""));
    EXPECT_FALSE(isUsed("", "W1F00000"));
    EXPECT_FALSE(isUsed("", ""));
}

TEST(ReportOrigin, AReportOfUnclearOriginMustNotGiveAnotherSerialNumber) {
    const auto isUsed = [](const char* own, const char* reported) {
        return isReportOf(deviceOf(own), ReportOrigin::kUnclear, reported);
    };
    EXPECT_TRUE(isUsed("Z9AB12CD", "Z9AB12CD"));
    EXPECT_FALSE(isUsed("Z9AB12CD", "W1F00000"));
    EXPECT_TRUE(isUsed("Z9AB12CD", ""));
    EXPECT_TRUE(isUsed("", "W1F00000"));
}

TEST(ReportOrigin, ThisScansReportCountsWhateverItsSerialNumber) {
    EXPECT_TRUE(isReportOf(deviceOf("BRIDGE"), ReportOrigin::kThisScan, "Z9AB12CD"));
    EXPECT_TRUE(isReportOf(deviceOf(""), ReportOrigin::kThisScan, ""));
}

} // namespace
} // namespace torvane
