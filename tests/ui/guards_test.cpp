#include "tests/ui/ui_test.h"

#include <ostream>
#include <vector>

namespace torvane::driver {
namespace {

constexpr const char* kNoActiveDrive = "***** NO ACTIVE DRIVE *****";
constexpr const char* kChooseToClone = "***** ERROR Choose Drive To Clone *****";
constexpr const char* kChooseToImage = "***** ERROR Choose Drive To Image *****";
constexpr const char* kTooMany = "***** ERROR Too Many Drives *****";

struct Guard {
    const char* name;
    int button;
    int menu; ///< 0: none
    const char* caption;
    const char* text;
};

void PrintTo(const Guard& guard, std::ostream* stream) {
    *stream << guard.name;
}

std::string nameOf(const ::testing::TestParamInfo<Guard>& info) {
    return info.param.name;
}

const std::vector<Guard> kActiveDriveGuards = {
    {"Report", kCreateReport, kMenuCreateReport, kNoActiveDrive,
     "Load Drives, and click on drive to make ACTIVE for report."},
    {"CriticalReadTest", kCriticalTest, kMenuCriticalTest, kNoActiveDrive,
     "Load Drives, and click on drive to make ACTIVE for Critical Read Test"},
    {"ShortReadTest", kShortTest, kMenuShortTest, kNoActiveDrive,
     "Load Drives, and click on drive to make ACTIVE for Short Read Test"},
    {"NistReadTest", kNistTest, kMenuNistTest, kNoActiveDrive,
     "Load Drives, and click on drive to make ACTIVE for NIST Read Test"},
    {"QuickDiskView", kQuickDiskView, 0, kNoActiveDrive, "Please choose a drive to view"},
};

const std::vector<Guard> kNoneTickedGuards = {
    {"Clone", kClone, kMenuClone, kChooseToClone, "You must choose one drive to clone"},
    {"DriveToImage", kDriveToImage, kMenuDriveToImage, kChooseToClone, "You must choose at least one drive to image"},
    {"ForensicImage", kForensicImage, 0, kChooseToImage, "You must choose at least a drive to image"},
};

const std::vector<Guard> kTwoTickedGuards = {
    {"Clone", kClone, kMenuClone, kTooMany, "You may only choose one drive to clone"},
    {"DriveToImage", kDriveToImage, kMenuDriveToImage, kTooMany, "You may only choose one drive to clone"},
    {"ForensicImage", kForensicImage, 0, kTooMany, "You may only choose one drive to image"},
};

const std::vector<Guard> kEmptyListGuards = {
    {"ImageToDrive", kImageToDrive, kMenuImageToDrive, "***** ERROR Listed Drives *****",
     "Please 'use 'Load Drives' from 'Tasks' Menu"},
};

std::vector<Guard> join(std::vector<Guard> all, const std::vector<Guard>& more) {
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

const std::vector<Guard> kNothingChosen = join(kActiveDriveGuards, kNoneTickedGuards);
const std::vector<Guard> kBeforeLoading = join(kNothingChosen, kEmptyListGuards);

/// By button and by menu command, the guard shows its box and nothing else.
class GuardTest : public UiTest, public ::testing::WithParamInterface<Guard> {
  protected:
    void expectGuard() const {
        const int rows = torvane().logList().rowCount();
        torvane().press(GetParam().button);
        expectStopBox(GetParam().caption, GetParam().text);
        expectNoBox();
        if (GetParam().menu != 0) {
            torvane().command(GetParam().menu);
            expectStopBox(GetParam().caption, GetParam().text);
            expectNoBox();
        }
        EXPECT_EQ(torvane().logList().rowCount(), rows) << "the command went on";
    }
    void loadOnce() const {
        if (torvane().driveList().rowCount() == 0) {
            torvane().loadDrives();
        }
    }
};

class BeforeLoadingTest : public GuardTest {};
TEST_P(BeforeLoadingTest, CommandIsRefused) {
    expectGuard();
}
INSTANTIATE_TEST_SUITE_P(All, BeforeLoadingTest, ::testing::ValuesIn(kBeforeLoading), nameOf);

class ExtendedFunctionsTest : public UiTest {};
TEST_F(ExtendedFunctionsTest, DetectBitlockerWantsAnActiveDrive) {
    const int rows = torvane().logList().rowCount();
    torvane().command(kMenuBitLocker);
    expectBox("****** CHOOSE A DRIVE ******", "Please choose a drive to check for BITLOCKER encryption.",
              BoxIcon::kExclamation, "OK");
    expectNoBox();
    EXPECT_EQ(torvane().logList().rowCount(), rows) << "the command went on";
}

class NothingChosenTest : public GuardTest {};
TEST_P(NothingChosenTest, CommandIsRefused) {
    loadOnce();
    expectGuard();
}
INSTANTIATE_TEST_SUITE_P(All, NothingChosenTest, ::testing::ValuesIn(kNothingChosen), nameOf);

class OnlyTickedTest : public GuardTest {};
TEST_P(OnlyTickedTest, TickedDriveIsNotActive) {
    loadOnce();
    torvane().driveList().setTicked(1, true);
    expectGuard();
}
INSTANTIATE_TEST_SUITE_P(All, OnlyTickedTest, ::testing::ValuesIn(kActiveDriveGuards), nameOf);

class OnlyActiveTest : public GuardTest {};
TEST_P(OnlyActiveTest, ActiveDriveIsNotTicked) {
    loadOnce();
    torvane().driveList().click(1);
    expectGuard();
}
INSTANTIATE_TEST_SUITE_P(All, OnlyActiveTest, ::testing::ValuesIn(kNoneTickedGuards), nameOf);

class TwoTickedTest : public GuardTest {};
TEST_P(TwoTickedTest, CommandIsRefused) {
    loadOnce();
    torvane().driveList().setTicked(0, true);
    torvane().driveList().setTicked(1, true);
    expectGuard();
    EXPECT_TRUE(torvane().driveList().ticked(0));
    EXPECT_TRUE(torvane().driveList().ticked(1));
}
INSTANTIATE_TEST_SUITE_P(All, TwoTickedTest, ::testing::ValuesIn(kTwoTickedGuards), nameOf);

} // namespace
} // namespace torvane::driver
