#include "records/drive_texts.h"
#include "window/list_cells.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <ostream>
#include <string>

namespace torvane {

void PrintTo(const CellPaint& paint, std::ostream* stream) {
    *stream << std::hex << "text 0x" << paint.text << " on 0x" << paint.background << std::dec;
}

namespace {

constexpr ColourCode kWhite = colour(255, 255, 255);
constexpr CellPaint kPlain{colour(0, 0, 128), colour(80, 175, 228)};
constexpr CellPaint kQuiet{colour(45, 99, 119), colour(136, 196, 236)};
constexpr CellPaint kGreen{kWhite, colour(13, 119, 0)};
constexpr CellPaint kRed{kWhite, colour(224, 0, 7)};
constexpr CellPaint kYellow{kWhite, colour(248, 198, 1)};

using PaintFunction = CellPaint (*)(int column, std::string_view text);

struct PaintCase {
    PaintFunction paint;
    int column;
    const char* text;
    CellPaint expected;
};

void PrintTo(const PaintCase& row, std::ostream* stream) {
    *stream << (row.paint == driveCellPaint ? "drive" : "log") << " column " << row.column << " \"" << row.text << '"';
}

class CellPaintTest : public ::testing::TestWithParam<PaintCase> {};

TEST_P(CellPaintTest, FollowsTheTable) {
    EXPECT_EQ(GetParam().paint(GetParam().column, GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    LogType, CellPaintTest,
    ::testing::Values(PaintCase{logCellPaint, 0, "STATUS", kQuiet}, PaintCase{logCellPaint, 0, "INVALID", kQuiet},
                      PaintCase{logCellPaint, 0, "SUCCESS", kGreen}, PaintCase{logCellPaint, 0, "SUC", kGreen},
                      PaintCase{logCellPaint, 0, "SU", kQuiet}, PaintCase{logCellPaint, 0, "FAILURE", kRed},
                      PaintCase{logCellPaint, 0, "ERROR", kRed}, PaintCase{logCellPaint, 0, "TEST", kGreen},
                      PaintCase{logCellPaint, 0, "TESTING", kGreen}, PaintCase{logCellPaint, 0, "TES", kQuiet},
                      PaintCase{logCellPaint, 0, "WARN", kQuiet}, PaintCase{logCellPaint, 0, "error", kQuiet},
                      PaintCase{logCellPaint, 0, " ERROR", kQuiet}, PaintCase{logCellPaint, 0, "", kQuiet}));

// A failure is red in its "Type" cell only.
INSTANTIATE_TEST_SUITE_P(OtherLogColumns, CellPaintTest,
                         ::testing::Values(PaintCase{logCellPaint, 1, "FAILURE", kPlain},
                                           PaintCase{logCellPaint, 2, "ERROR", kPlain},
                                           PaintCase{logCellPaint, 3, "SUCCESS", kPlain},
                                           PaintCase{logCellPaint, 3, "TEST", kPlain},
                                           PaintCase{logCellPaint, 5, "BAD", kPlain}));

INSTANTIATE_TEST_SUITE_P(
    DriveModel, CellPaintTest,
    ::testing::Values(PaintCase{driveCellPaint, 0, "WDC WD10EZEX", kQuiet},
                      PaintCase{driveCellPaint, 0, "SUCCESS", kGreen}, PaintCase{driveCellPaint, 0, "FAILED", kRed},
                      PaintCase{driveCellPaint, 0, "ERR", kRed}, PaintCase{driveCellPaint, 0, "WARNING", kYellow},
                      PaintCase{driveCellPaint, 0, "WAR", kQuiet}, PaintCase{driveCellPaint, 0, "TEST", kQuiet},
                      PaintCase{driveCellPaint, 0, "", kQuiet}));

INSTANTIATE_TEST_SUITE_P(DriveSerialNumber, CellPaintTest,
                         ::testing::Values(PaintCase{driveCellPaint, 1, "WD-WCC6Y7", kQuiet},
                                           PaintCase{driveCellPaint, 1, "ERROR", kQuiet},
                                           PaintCase{driveCellPaint, 1, "", kQuiet}));

INSTANTIATE_TEST_SUITE_P(
    DriveStatus, CellPaintTest,
    ::testing::Values(PaintCase{driveCellPaint, 5, "Idle", kQuiet}, PaintCase{driveCellPaint, 5, "SKIPPED", kRed},
                      PaintCase{driveCellPaint, 5, "COMPLETED", kGreen}, PaintCase{driveCellPaint, 5, "WIPING", kRed},
                      PaintCase{driveCellPaint, 5, "BAD", kRed}, PaintCase{driveCellPaint, 5, "BA", kQuiet},
                      PaintCase{driveCellPaint, 5, "complete", kQuiet}, PaintCase{driveCellPaint, 5, "SUCCESS", kQuiet},
                      PaintCase{driveCellPaint, 5, "ERROR", kQuiet}));

INSTANTIATE_TEST_SUITE_P(OtherDriveColumns, CellPaintTest,
                         ::testing::Values(PaintCase{driveCellPaint, 2, "1953525168", kPlain},
                                           PaintCase{driveCellPaint, 3, "BAD", kPlain},
                                           PaintCase{driveCellPaint, 4, "FAIL", kPlain}));

constexpr CellPaint kSelected{kSelectedText, kSelectedBackground};

TEST(SelectedCellTest, TakesTheRowsColoursUnlessItsOwnTellSomething) {
    EXPECT_EQ(paintWhenSelected(kPlain, kSelected), kSelected);
    EXPECT_EQ(paintWhenSelected(kQuiet, kSelected), kSelected);
    for (const CellPaint& telling : {kGreen, kRed, kYellow}) {
        EXPECT_EQ(paintWhenSelected(telling, kSelected), telling);
    }
}

/// What a colour's component of 0 to 255 gives of light, 0 to 1 (WCAG 2.1, "relative luminance").
double linear(std::uint32_t component) {
    const double share = component / 255.0;
    return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
}

double luminance(ColourCode code) {
    return 0.2126 * linear(code & 0xFF) + 0.7152 * linear(code >> 8 & 0xFF) + 0.0722 * linear(code >> 16 & 0xFF);
}

double contrast(ColourCode one, ColourCode other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

TEST(ColourTest, SelectedRowsAreEasilyRead) {
    EXPECT_NEAR(contrast(kWhite, colour(0, 0, 0)), 21.0, 0.001) << "the measure itself";
    EXPECT_GE(contrast(kSelectedText, kSelectedBackground), 4.5);
    EXPECT_GE(contrast(kSelectedText, kRestingSelectedBackground), 4.5);
}

TEST(ColourTest, SelectedRowsStandOutOfTheListWithTheKeyboardOrWithout) {
    EXPECT_GE(contrast(kSelectedBackground, kListBackground), 3.0);
    EXPECT_GE(contrast(kRestingSelectedBackground, kListBackground), 3.0);
}

TEST(ColourTest, KeepsRedInTheLowestByte) {
    EXPECT_EQ(colour(1, 2, 3), 0x00030201U);
}

struct InterfaceCase {
    std::int32_t busCode;
    std::int32_t smartType;
    const char* expected;
};

void PrintTo(const InterfaceCase& row, std::ostream* stream) {
    *stream << "bus code " << row.busCode << ", SMART type " << row.smartType;
}

class InterfaceTextTest : public ::testing::TestWithParam<InterfaceCase> {};

TEST_P(InterfaceTextTest, NamesTheWayToTheDrive) {
    DriveRecord record;
    record.busCode = GetParam().busCode;
    record.smartType = GetParam().smartType;
    record.busText.assign("Serial ATA");
    EXPECT_EQ(interfaceText(record), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Usb, InterfaceTextTest,
                         ::testing::Values(InterfaceCase{2000, 1000, "SATA USB"}, InterfaceCase{2000, 1001, "USB"},
                                           InterfaceCase{2000, 1002, "USB"}, InterfaceCase{2000, 1003, "USB"},
                                           InterfaceCase{2000, 1004, "USB"}, InterfaceCase{2000, 0, "USB"}));
INSTANTIATE_TEST_SUITE_P(Direct, InterfaceTextTest,
                         ::testing::Values(InterfaceCase{2001, 1000, "SATA"}, InterfaceCase{2001, 1001, "SATA"},
                                           InterfaceCase{2001, 1002, "SATA"}, InterfaceCase{2001, 1003, "SATA"},
                                           InterfaceCase{2001, 1004, "SATA"}));
INSTANTIATE_TEST_SUITE_P(File, InterfaceTextTest,
                         ::testing::Values(InterfaceCase{2002, 1000, "SATA"}, InterfaceCase{2002, 1001, "FILE"},
                                           InterfaceCase{2002, 1002, "FILE"}, InterfaceCase{2002, 1003, "FILE"},
                                           InterfaceCase{2002, 1004, "FILE"}));
INSTANTIATE_TEST_SUITE_P(Nvme, InterfaceTextTest,
                         ::testing::Values(InterfaceCase{2003, 1000, "SATA"}, InterfaceCase{2003, 1001, "NVME"},
                                           InterfaceCase{2003, 1002, "NVME"}, InterfaceCase{2003, 1003, "NVME"},
                                           InterfaceCase{2003, 1004, "NVME"}));
INSTANTIATE_TEST_SUITE_P(OwnText, InterfaceTextTest,
                         ::testing::Values(InterfaceCase{2004, 1000, "SATA USB"},
                                           InterfaceCase{2004, 1001, "Serial ATA"},
                                           InterfaceCase{2004, 1004, "Serial ATA"}));
INSTANTIATE_TEST_SUITE_P(OutsideTheList, InterfaceTextTest,
                         ::testing::Values(InterfaceCase{0, 1000, ""}, InterfaceCase{1999, 1001, ""},
                                           InterfaceCase{2005, 1000, ""}, InterfaceCase{-1, 1000, ""}));

TEST(InterfaceTextTest, StandardDriveWithItsOwnTextKeepsTheNewOne) {
    DriveRecord record;
    record.busCode = kBusCodeOwnText;
    record.smartType = kSmartTypeStandard;
    record.busText.assign("Fibre");
    (void)interfaceText(record);
    EXPECT_EQ(record.busText.view(), "SATA USB");
}

TEST(SizeTextTest, CountsTheDrivesOwnSectors) {
    DriveRecord record;
    record.sizeBytes = 1000204886016;
    record.bytesPerSector = 512;
    EXPECT_EQ(sizeSectorsText(record), "1953525168");
    record.bytesPerSector = 4096;
    EXPECT_EQ(sizeSectorsText(record), "244190646");
}

TEST(SizeTextTest, TakesTheLargestDrive) {
    DriveRecord record;
    record.sizeBytes = INT64_MAX;
    record.bytesPerSector = 1;
    EXPECT_EQ(sizeSectorsText(record), "9223372036854775807");
}

TEST(SizeTextTest, UnknownSectorSizeIsNotZero) {
    DriveRecord record;
    record.sizeBytes = 1000;
    EXPECT_EQ(sizeSectorsText(record), "Not Available");
}

TEST(SizeTextTest, GigabytesHaveTwoDecimals) {
    DriveRecord record;
    record.sizeGigabytes = 931.5128;
    EXPECT_EQ(sizeGigabytesText(record), "931.51");
    record.sizeGigabytes = 0.0;
    EXPECT_EQ(sizeGigabytesText(record), "0.00");
    record.sizeGigabytes = 18626.456;
    EXPECT_EQ(sizeGigabytesText(record), "18626.46");
}

} // namespace
} // namespace torvane
