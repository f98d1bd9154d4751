#include "tests/component/health_panel_fixture.h"

#include <filesystem>
#include <optional>

namespace torvane {
namespace {

using testing::Canvas;

constexpr std::array<int, 6> kDialX{10, 190, 370, 550, 730, 910};
constexpr std::array<int, 6> kPivotX{70, 250, 430, 610, 790, 970};
constexpr int kDialY = 140;
constexpr int kPivotY = 194;
constexpr int kLampX = 1064;

bool isDark(COLORREF colour) {
    return GetRValue(colour) < 90 && GetGValue(colour) < 90 && GetBValue(colour) < 90;
}

class HealthPanel : public HealthPanelFixture {
  protected:
    /// How many pixels of the picture's place differ from the picture on the panel's background.
    [[nodiscard]] int differences(const std::wstring& picture, int x, int y) const {
        const Canvas expected(kWidth, kHeight);
        expected.fill(kBackground);
        const SIZE size = expected.draw(picture, x, y);
        int count = 0;
        for (int row = y; row < y + size.cy; ++row) {
            for (int column = x; column < x + size.cx; ++column) {
                count += canvas_.at(column, row) != expected.at(column, row) ? 1 : 0;
            }
        }
        return count;
    }

    void expectBlankDials(const std::wstring& first, const std::wstring& others) const {
        for (std::size_t i = 0; i < kDialX.size(); ++i) {
            EXPECT_EQ(differences(i == 0 ? first : others, kDialX[i], kDialY), 0) << "dial " << i;
        }
    }

    void expectNeedle(std::size_t dial, int endX, int endY) const {
        EXPECT_TRUE(isDark(canvas_.at(kPivotX[dial], kPivotY))) << "dial " << dial << " has no hub";
        EXPECT_TRUE(isDark(canvas_.at((kPivotX[dial] + endX) / 2, (kPivotY + endY) / 2)))
            << "dial " << dial << " has no shaft";
        // The arrow's point is finer than a pixel: its dark part ends just before it.
        bool pointed = false;
        for (int y = endY - 3; y <= endY + 3; ++y) {
            for (int x = endX - 3; x <= endX + 3; ++x) {
                pointed = pointed || isDark(canvas_.at(x, y));
            }
        }
        EXPECT_TRUE(pointed) << "dial " << dial << " does not point at " << endX << ", " << endY;
    }

    /// The horizontal middle of what is written in the caption's place; none when nothing is.
    [[nodiscard]] std::optional<int> captionCentre(std::size_t dial) const {
        const int left = static_cast<int>(dial) * 180;
        std::optional<int> first;
        int last = 0;
        for (int x = left; x < left + 140; ++x) {
            for (int y = 224; y < 244; ++y) {
                if (isDark(canvas_.at(x, y))) {
                    first = first.value_or(x);
                    last = x;
                }
            }
        }
        return first ? std::optional((*first + last) / 2) : std::nullopt;
    }

    [[nodiscard]] std::array<bool, 6> captionsShown() const {
        std::array<bool, 6> shown{};
        for (std::size_t i = 0; i < shown.size(); ++i) {
            shown[i] = captionCentre(i).has_value();
        }
        return shown;
    }

    [[nodiscard]] bool lampPlaceIsEmpty() const {
        for (int y = 140; y < 222; ++y) {
            for (int x = kLampX; x < kWidth; ++x) {
                if (canvas_.at(x, y) != kBackground) {
                    return false;
                }
            }
        }
        return true;
    }

    static constexpr std::array<bool, 6> kAll{true, true, true, true, true, true};
    static constexpr std::array<bool, 6> kNone{};
};

TEST_F(HealthPanel, WithoutADriveIsBlankDialsAndTheWhiteLamp) {
    paintNothing();
    expectBlankDials(L"sw-gauge-poh-small.png", L"sw-gauge-small.png");
    EXPECT_EQ(differences(L"engine-check-white.png", kLampX, kDialY), 0);
    EXPECT_EQ(captionsShown(), kNone);
    EXPECT_EQ(canvas_.at(0, 0), kBackground);
    EXPECT_EQ(canvas_.at(kWidth - 1, kHeight - 1), kBackground);
    EXPECT_EQ(canvas_.at(160, 190), kBackground);
}

TEST_F(HealthPanel, OfAChosenRecordNeedsTheFlagToo) {
    DriveRecord drive = soundDrive();
    state_.activeDrive = &drive;
    state_.activeDriveChosen = 0;
    PaintHealthPanel(state_, window_.get(), canvas_.context(), Scale{});
    expectBlankDials(L"sw-gauge-poh-small.png", L"sw-gauge-small.png");
    EXPECT_EQ(differences(L"engine-check-white.png", kLampX, kDialY), 0);
}

TEST_F(HealthPanel, OfAStandardDrivePointsItsNeedles) {
    DriveRecord drive = soundDrive();
    drive.disk[Counter::kPowerOnHours] = 30000;
    drive.disk[Counter::kReallocatedSectors] = 0;
    drive.disk[Counter::kReallocationEvents] = 100;
    drive.disk[Counter::kPendingSectors] = 250;
    drive.disk[Counter::kOfflineUncorrectable] = 50;
    drive.disk[Counter::kReportedUncorrectable] = 0;
    paint(drive);
    expectNeedle(0, 69, 147);
    expectNeedle(1, 195, 194);
    expectNeedle(2, 484, 193);
    expectNeedle(3, 664, 193);
    expectNeedle(4, 789, 147);
    expectNeedle(5, 915, 194);
    EXPECT_EQ(captionsShown(), kAll);
    EXPECT_EQ(window_.text(IDC_HEALTH_MESSAGE), "failing");
}

TEST_F(HealthPanel, CentresItsCaptionsInTheirPlaces) {
    DriveRecord drive = soundDrive();
    paint(drive);
    for (std::size_t i = 0; i < kPivotX.size(); ++i) {
        ASSERT_TRUE(captionCentre(i)) << i;
        EXPECT_NEAR(*captionCentre(i), kPivotX[i], 2) << "caption " << i;
    }
}

TEST_F(HealthPanel, ShowsTheLampOfEachLevel) {
    DriveRecord drive = soundDrive();
    paint(drive);
    EXPECT_EQ(differences(L"engine-check-green.png", kLampX, kDialY), 0);
    EXPECT_EQ(window_.text(IDC_HEALTH_MESSAGE), "fine");
    drive.disk[Counter::kPowerOnHours] = 26280;
    paint(drive);
    EXPECT_EQ(differences(L"engine-check-blue.png", kLampX, kDialY), 0);
    EXPECT_EQ(window_.text(IDC_HEALTH_MESSAGE), "early wear");
    drive.disk[Counter::kReallocatedSectors] = 1;
    paint(drive);
    EXPECT_EQ(differences(L"engine-check-yellow.png", kLampX, kDialY), 0);
    EXPECT_EQ(window_.text(IDC_HEALTH_MESSAGE), "wearing out");
    drive.disk[Counter::kReallocatedSectors] = 50;
    paint(drive);
    EXPECT_EQ(differences(L"engine-check-red.png", kLampX, kDialY), 0);
    EXPECT_EQ(window_.text(IDC_HEALTH_MESSAGE), "failing");
}

TEST_F(HealthPanel, LeavesTheDialOfAnAbsentCounterBlank) {
    DriveRecord drive = soundDrive();
    drive.disk[Counter::kReallocationEvents] = kNotReported;
    paint(drive);
    EXPECT_EQ(differences(L"sw-gauge-small.png", kDialX[2], kDialY), 0);
    EXPECT_GT(differences(L"sw-gauge-small.png", kDialX[3], kDialY), 0);
    EXPECT_EQ(captionsShown(), (std::array<bool, 6>{true, true, false, true, true, true}));
}

TEST_F(HealthPanel, WithoutAnyCounterHasNoLamp) {
    DriveRecord drive = driveWithoutValues();
    paint(drive);
    expectBlankDials(L"sw-gauge-poh-small.png", L"sw-gauge-small.png");
    EXPECT_TRUE(lampPlaceIsEmpty());
}

TEST_F(HealthPanel, WithoutAReportHasTheWhiteLamp) {
    DriveRecord drive = soundDrive();
    drive.smartLoaded = 0;
    paint(drive);
    expectBlankDials(L"sw-gauge-poh-small.png", L"sw-gauge-small.png");
    EXPECT_EQ(differences(L"engine-check-white.png", kLampX, kDialY), 0);
}

TEST_F(HealthPanel, OfAnSsdHasNeedlesButNoLamp) {
    DriveRecord drive = soundDrive();
    drive.smartType = kSmartTypeSsd;
    drive.ssd[Counter::kPowerOnHours] = 20000;
    paint(drive);
    expectNeedle(0, 15, 192);
    expectNeedle(5, 915, 194);
    EXPECT_EQ(captionsShown(), kAll);
    EXPECT_TRUE(lampPlaceIsEmpty());
}

TEST_F(HealthPanel, OfAnNvmeDriveShowsPassAndFail) {
    DriveRecord drive = driveWithoutValues(kSmartTypeNvme);
    drive.nvme.criticalWarning = 5;
    drive.nvme.availableSpare = 3;
    drive.nvme.availableSpareThreshold = 10;
    drive.nvme.dataUnitsWritten = 2000000;
    drive.nvme.gigabytesWritten = 953;
    drive.nvme.enduranceFraction = 953 / 1024.0 / 7000.0;
    paint(drive);
    expectNeedle(0, 15, 193);
    expectNeedle(1, 304, 193);
    expectNeedle(2, 375, 194);
    expectNeedle(3, 664, 193);
    expectNeedle(4, 735, 194);
    expectNeedle(5, 915, 194);
    EXPECT_EQ(captionsShown(), kAll);
    EXPECT_TRUE(lampPlaceIsEmpty());
    EXPECT_EQ(window_.text(IDC_VALUE_TEXT_1), "Total Bytes Written 953 GB is 0.01 percent of threshold");
    EXPECT_EQ(window_.text(IDC_VALUE_TEXT_2), "FAILED 003 010");
    for (int id = IDC_VALUE_TEXT_3; id <= IDC_VALUE_TEXT_6; ++id) {
        EXPECT_EQ(window_.text(id), "RESULT");
    }
}

TEST_F(HealthPanel, OfAnNvmeDriveWithoutHealthLogIsBlankDials) {
    DriveRecord drive = driveWithoutValues(kSmartTypeNvme);
    paint(drive);
    expectBlankDials(L"sw-gauge-poh-small.png", L"passfail-gauge.png");
    EXPECT_EQ(captionsShown(), kNone);
    EXPECT_EQ(window_.text(IDC_VALUE_TEXT_1), " ");
    EXPECT_EQ(window_.text(IDC_VALUE_TEXT_2), "");
}

TEST_F(HealthPanel, OfAnUnknownDriveIsSmallDialsAlone) {
    DriveRecord drive = soundDrive();
    drive.smartType = kSmartTypeUnknown;
    paint(drive);
    expectBlankDials(L"sw-gauge-small.png", L"sw-gauge-small.png");
    EXPECT_EQ(captionsShown(), kNone);
    EXPECT_TRUE(lampPlaceIsEmpty());
}

TEST_F(HealthPanel, KeepsNothingOfTheDriveBefore) {
    DriveRecord failing = soundDrive();
    failing.disk[Counter::kReallocatedSectors] = 99;
    paint(failing);
    DriveRecord nvme = driveWithoutValues(kSmartTypeNvme);
    nvme.nvme.criticalWarning = 0;
    paint(nvme);
    EXPECT_EQ(window_.text(IDC_HEALTH_MESSAGE), "fine");
    EXPECT_EQ(window_.text(IDC_VALUE_TEXT_1), " ");
    DriveRecord unknown = driveWithoutValues(kSmartTypeUnknown);
    paint(unknown);
    for (int id = IDC_VALUE_TEXT_1; id <= IDC_VALUE_TEXT_6; ++id) {
        EXPECT_EQ(window_.text(id), "");
    }
    EXPECT_EQ(window_.text(IDC_OWN_VERDICT), "");
    expectBlankDials(L"sw-gauge-small.png", L"sw-gauge-small.png");
}

TEST_F(HealthPanel, DoesWithoutPicturesThatAreMissingOrDamaged) {
    DriveRecord drive = soundDrive();
    drive.disk[Counter::kPowerOnHours] = 30000;
    std::filesystem::remove("gauge-labels2.png");
    paint(drive);
    expectNeedle(0, 69, 147);
    EXPECT_EQ(differences(L"engine-check-blue.png", kLampX, kDialY), 0);

    std::filesystem::remove("engine-check-blue.png");
    std::filesystem::remove("sw-gauge-poh-small.png");
    std::filesystem::resize_file("sw-gauge-small.png", 100);
    paint(drive);
    EXPECT_TRUE(lampPlaceIsEmpty());
    EXPECT_EQ(canvas_.at(20, 215), kBackground) << "where the first dial's frame would be";
    expectNeedle(0, 69, 147);
    EXPECT_EQ(captionsShown(), kAll);
}

} // namespace
} // namespace torvane
