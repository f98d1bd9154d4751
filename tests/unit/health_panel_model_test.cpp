#include "health/panel_model.h"

#include "health/counter_text.h"
#include "health/health_sentence.h"
#include "health/nvme_verdict.h"
#include "tests/unit/health_test_drives.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

using Names = std::vector<std::string>;

Names dialImages(const PanelModel& panel) {
    Names names;
    for (const Dial& dial : panel.dials) {
        names.emplace_back(dial.image);
    }
    return names;
}

Names captions(const PanelModel& panel) {
    Names names;
    for (const Dial& dial : panel.dials) {
        names.emplace_back(dial.caption);
    }
    return names;
}

/// Where the needle of each dial must end for these values; -1 for none.
void expectNeedles(const PanelModel& panel, const std::array<double, kDialCount>& values) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto& needle = panel.dials[i].needleEnd;
        if (values[i] < 0) {
            EXPECT_FALSE(needle) << "dial " << i;
            continue;
        }
        ASSERT_TRUE(needle) << "dial " << i;
        EXPECT_EQ(*needle, NeedleEndPoint(values[i], 55.0, panel.dials[i].pivot)) << "dial " << i;
    }
}

constexpr std::array<double, kDialCount> kNoNeedles{-1, -1, -1, -1, -1, -1};
const Names kNoCaptions(kDialCount);
const Names kStandardImages{"sw-gauge-poh-small.png", "sw-gauge-small.png", "sw-gauge-small.png",
                            "sw-gauge-small.png",     "sw-gauge-small.png", "sw-gauge-small.png"};
const Names kNvmeImages{"sw-gauge-poh-small.png", "passfail-gauge.png", "passfail-gauge.png",
                        "passfail-gauge.png",     "passfail-gauge.png", "passfail-gauge.png"};
const Names kUnknownImages(kDialCount, "sw-gauge-small.png");
const Names kStandardCaptions{"Power On Hours",  "Moved Errors",         "Slow Sectors",
                              "Pending Sectors", "Uncorrectable Errors", "Reported Errors"};

bool hasNoNumbers(const PanelTexts& texts) {
    return texts.counters == std::array<std::string, kDialCount>{} && texts.endurance.empty() && texts.own.empty() &&
           texts.nvmeResults == std::array<std::string, kNvmeWarningCount>{};
}

DriveRecord nvmeDrive(std::int32_t criticalWarning) {
    DriveRecord drive = driveWithoutValues(kSmartTypeNvme);
    drive.nvme.criticalWarning = criticalWarning;
    drive.nvme.availableSpare = 9;
    drive.nvme.availableSpareThreshold = 10;
    drive.nvme.dataUnitsWritten = 2000000;
    drive.nvme.gigabytesWritten = 953;
    drive.nvme.enduranceFraction = 953 / 1024.0 / 7000.0;
    return drive;
}

TEST(PanelGeometry, IsTheSameInEveryLayout) {
    const std::array<int, kDialCount> dialX{10, 190, 370, 550, 730, 910};
    const std::array<int, kDialCount> pivotX{70, 250, 430, 610, 790, 970};
    const std::array<int, kDialCount> captionLeft{0, 180, 360, 540, 720, 900};
    const std::array<int, kDialCount> captionRight{140, 320, 500, 680, 860, 1040};
    for (const std::int32_t type : {kSmartTypeStandard, kSmartTypeSsd, kSmartTypeNvme, kSmartTypeUnknown}) {
        const DriveRecord drive = driveWithoutValues(type);
        const PanelModel panel = buildPanelModel(&drive, fourMessages());
        for (std::size_t i = 0; i < kDialCount; ++i) {
            const Dial& dial = panel.dials[i];
            EXPECT_EQ(dial.position, (PanelPoint{dialX[i], 140}));
            EXPECT_EQ(dial.pivot, (PanelPoint{pivotX[i], 194}));
            EXPECT_EQ(dial.captionBox.left, captionLeft[i]);
            EXPECT_EQ(dial.captionBox.right, captionRight[i]);
            EXPECT_EQ(dial.captionBox.top, 224);
            EXPECT_EQ(dial.captionBox.bottom, 244);
        }
    }
    EXPECT_EQ(kLampPosition, (PanelPoint{1064, 140}));
}

TEST(NoDrivePanel, ShowsDialsAndTheWhiteLamp) {
    const PanelModel panel = buildPanelModel(nullptr, fourMessages());
    EXPECT_EQ(dialImages(panel), kStandardImages);
    EXPECT_EQ(captions(panel), kNoCaptions);
    expectNeedles(panel, kNoNeedles);
    EXPECT_EQ(panel.lampImage, "engine-check-white.png");
    EXPECT_EQ(panel.texts.healthMessage, "");
    EXPECT_TRUE(hasNoNumbers(panel.texts));
}

TEST(StandardPanel, ShowsEachCounterOnItsOwnDial) {
    DriveRecord drive = soundDrive();
    drive.disk[Counter::kPowerOnHours] = 30000;
    drive.disk[Counter::kReallocatedSectors] = 10;
    drive.disk[Counter::kReallocationEvents] = 20;
    drive.disk[Counter::kPendingSectors] = 30;
    drive.disk[Counter::kOfflineUncorrectable] = 40;
    drive.disk[Counter::kReportedUncorrectable] = 250;
    const PanelModel panel = buildPanelModel(&drive, fourMessages());
    EXPECT_EQ(dialImages(panel), kStandardImages);
    EXPECT_EQ(captions(panel), kStandardCaptions);
    expectNeedles(panel, {0.5, 0.1, 0.2, 0.3, 0.4, 1.0});
    EXPECT_EQ(*panel.dials[0].needleEnd, (PanelPoint{69, 147}));
    EXPECT_EQ(*panel.dials[5].needleEnd, (PanelPoint{1024, 193}));
    EXPECT_EQ(panel.lampImage, "engine-check-red.png");
    EXPECT_EQ(panel.texts.healthMessage, "failing");
    EXPECT_EQ(panel.texts.counters,
              (std::array<std::string, kDialCount>{"30,000 h, 3.4 y", "10", "20", "30", "40", "250"}))
        << "a needle at its end hides nothing";
}

TEST(StandardPanel, LeavesTheDialOfAnAbsentCounterBlank) {
    DriveRecord drive = driveWithoutValues();
    drive.disk[Counter::kPendingSectors] = 0;
    const PanelModel panel = buildPanelModel(&drive, fourMessages());
    EXPECT_EQ(dialImages(panel), kStandardImages);
    EXPECT_EQ(captions(panel), (Names{"", "", "", "Pending Sectors", "", ""}));
    expectNeedles(panel, {-1, -1, -1, 0.0, -1, -1});
    EXPECT_EQ(panel.lampImage, "engine-check-green.png");
    EXPECT_EQ(panel.texts.counters[3], "0");
    EXPECT_EQ(panel.texts.counters[4], "not reported");
}

TEST(StandardPanel, WithoutAnyCounterHasNoLampAtAll) {
    const DriveRecord drive = driveWithoutValues();
    const PanelModel panel = buildPanelModel(&drive, fourMessages());
    expectNeedles(panel, kNoNeedles);
    EXPECT_EQ(panel.lampImage, "");
    EXPECT_EQ(panel.texts.healthMessage, healthSentence(drive, fourMessages()));
    EXPECT_TRUE(hasNoNumbers(panel.texts));
}

TEST(StandardPanel, WithoutAReportShowsTheWhiteLampAndNoNeedle) {
    DriveRecord drive = soundDrive();
    drive.smartLoaded = 0;
    const PanelModel panel = buildPanelModel(&drive, fourMessages());
    EXPECT_EQ(dialImages(panel), kStandardImages);
    EXPECT_EQ(captions(panel), kNoCaptions);
    expectNeedles(panel, kNoNeedles);
    EXPECT_EQ(panel.lampImage, "engine-check-white.png");
}

TEST(StandardPanel, ServesDrivesWithoutSmartAndCodesOutsideTheList) {
    for (const std::int32_t type : {1004, 0, 999, 1005, -1}) {
        DriveRecord drive = soundDrive();
        drive.smartType = type;
        const PanelModel panel = buildPanelModel(&drive, fourMessages());
        EXPECT_EQ(captions(panel), kStandardCaptions) << type;
        EXPECT_EQ(panel.lampImage, "engine-check-green.png") << type;
    }
}

TEST(StandardPanel, AloneLoadsTheLabelsThatAreNotDrawn) {
    const DriveRecord standard = soundDrive();
    EXPECT_EQ(buildPanelModel(&standard, {}).undrawnImages, (std::vector<std::string_view>{"gauge-labels2.png"}));
    for (const std::int32_t type : {kSmartTypeSsd, kSmartTypeNvme, kSmartTypeUnknown}) {
        const DriveRecord other = driveWithoutValues(type);
        EXPECT_TRUE(buildPanelModel(&other, {}).undrawnImages.empty()) << type;
    }
}

TEST(SsdPanel, ShowsItsOwnCountersWithoutLamp) {
    DriveRecord drive = soundDrive();
    drive.smartType = kSmartTypeSsd;
    drive.disk[Counter::kPowerOnHours] = 60000;
    drive.disk[Counter::kReallocatedSectors] = 99;
    drive.ssd[Counter::kPowerOnHours] = 20000;
    drive.ssd[Counter::kReallocatedSectors] = 1;
    drive.ssd[Counter::kReallocationEvents] = 2;
    drive.ssd[Counter::kPendingSectors] = 3;
    drive.ssd[Counter::kOfflineUncorrectable] = 4;
    drive.ssd[Counter::kReportedUncorrectable] = 5;
    const PanelModel panel = buildPanelModel(&drive, fourMessages());
    EXPECT_EQ(dialImages(panel), kStandardImages);
    Names expected = kStandardCaptions;
    expected[0] = "POH";
    EXPECT_EQ(captions(panel), expected);
    expectNeedles(panel, {0.01, 0.01, 0.02, 0.03, 0.04, 0.05});
    EXPECT_EQ(panel.lampImage, "");
    EXPECT_EQ(panel.texts.healthMessage, "wearing out");
    EXPECT_EQ(panel.texts.counters, (std::array<std::string, kDialCount>{"20,000 h, 2.3 y", "1", "2", "3", "4", "5"}));
}

TEST(SsdPanel, TellsACounterThatTheOtherSetAloneHasWithoutANeedle) {
    DriveRecord drive = driveWithoutValues(kSmartTypeSsd);
    drive.ssd[Counter::kPowerOnHours] = 0;
    drive.disk[Counter::kReportedUncorrectable] = 4012;
    const PanelModel panel = buildPanelModel(&drive, {});
    expectNeedles(panel, {0.0, -1, -1, -1, -1, -1});
    EXPECT_EQ(panel.texts.counters[5], "Reported Errors: 4,012");
    EXPECT_EQ(panel.texts.counters[1], "not reported");
}

TEST(SsdPanel, LeavesTheDialOfAnAbsentCounterBlank) {
    DriveRecord drive = driveWithoutValues(kSmartTypeSsd);
    drive.ssd[Counter::kReallocationEvents] = 100;
    const PanelModel panel = buildPanelModel(&drive, fourMessages());
    EXPECT_EQ(captions(panel), (Names{"", "", "Slow Sectors", "", "", ""}));
    expectNeedles(panel, {-1, -1, 1.0, -1, -1, -1});
}

TEST(NvmePanel, ShowsEnduranceAndPassesOfASoundDrive) {
    const DriveRecord drive = nvmeDrive(0);
    const PanelModel panel = buildPanelModel(&drive, fourMessages());
    EXPECT_EQ(dialImages(panel), kNvmeImages);
    EXPECT_EQ(captions(panel), (Names{"Gigabytes Written", "Available Space", "Temp Threshold", "NVM Sub-System",
                                      "Read-Only Mode", "Volatile Memory"}));
    expectNeedles(panel, {drive.nvme.enduranceFraction, 0, 0, 0, 0, 0});
    EXPECT_EQ(panel.lampImage, "");
    EXPECT_EQ(panel.texts.healthMessage, healthSentence(drive, fourMessages()));
    EXPECT_EQ(panel.texts.own, nvmeLifeText(drive.nvme));
    EXPECT_EQ(panel.texts.endurance, "Total Bytes Written 953 GB is 0.01 percent of threshold");
    EXPECT_EQ(panel.texts.nvmeResults, (std::array<std::string, 5>{"RESULTS", "RESULT", "RESULT", "RESULT", "RESULT"}));
}

TEST(NvmePanel, ShowsEachWarningBitOnItsOwnDial) {
    for (std::int32_t warning = 0; warning < 32; ++warning) {
        const DriveRecord drive = nvmeDrive(warning);
        const PanelModel panel = buildPanelModel(&drive, {});
        std::array<double, kDialCount> values{drive.nvme.enduranceFraction};
        for (std::size_t bit = 0; bit < 5; ++bit) {
            values[bit + 1] = ((warning >> bit) & 1) != 0 ? 100.0 : 0.0;
        }
        expectNeedles(panel, values);
        EXPECT_EQ(panel.texts.nvmeResults[0], (warning & 1) != 0 ? "FAILED 009 010" : "RESULTS") << warning;
    }
}

TEST(NvmePanel, LeavesThePassFailDialsBlankWithoutAHealthLog) {
    DriveRecord drive = nvmeDrive(kNotReported);
    drive.nvme.dataUnitsWritten = kNotReported;
    const PanelModel panel = buildPanelModel(&drive, {});
    EXPECT_EQ(dialImages(panel), kNvmeImages);
    EXPECT_EQ(captions(panel), kNoCaptions);
    expectNeedles(panel, kNoNeedles);
    EXPECT_EQ(panel.texts.endurance, " ");
    EXPECT_EQ(panel.texts.nvmeResults, (std::array<std::string, 5>{}));
}

TEST(NvmePanel, NeedsNoWrittenDataForItsPassFailDials) {
    DriveRecord drive = nvmeDrive(5);
    drive.nvme.dataUnitsWritten = kNotReported;
    const PanelModel panel = buildPanelModel(&drive, {});
    expectNeedles(panel, {-1, 100.0, 0, 100.0, 0, 0});
    EXPECT_EQ(panel.dials[0].caption, "");
}

TEST(UnknownDrivePanel, IsDialsAlone) {
    DriveRecord drive = soundDrive();
    drive.smartType = kSmartTypeUnknown;
    const PanelModel panel = buildPanelModel(&drive, fourMessages());
    EXPECT_EQ(dialImages(panel), kUnknownImages);
    EXPECT_EQ(captions(panel), kNoCaptions);
    expectNeedles(panel, kNoNeedles);
    EXPECT_EQ(panel.lampImage, "");
    EXPECT_EQ(panel.texts.healthMessage, healthSentence(drive, fourMessages()));
    EXPECT_TRUE(hasNoNumbers(panel.texts));
}

TEST(CounterText, TellsHoursInYearsAsWell) {
    EXPECT_EQ(counterText(Counter::kPowerOnHours, 8147), "8,147 h, 0.9 y");
    EXPECT_EQ(counterText(Counter::kPowerOnHours, kNotReported), "not reported");
    EXPECT_EQ(counterText(Counter::kPendingSectors, 4012), "4,012");
    EXPECT_EQ(counterText(Counter::kPendingSectors, -7), "-7");
}

} // namespace
} // namespace torvane
