#include "tests/ui/ui_test.h"

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

/// By button and by menu command, a guard shows its box and nothing else.
class GuardTest : public UiTest {
  protected:
    void expectGuards(const std::vector<Guard>& guards) const {
        for (const Guard& guard : guards) {
            SCOPED_TRACE(guard.name);
            expectGuard(guard);
        }
    }
    /// Loads the drives: nothing is ticked or active then.
    void chooseNothing() const { torvane().loadDrives(); }

  private:
    void expectGuard(const Guard& guard) const {
        const int rows = torvane().logList().rowCount();
        torvane().press(guard.button);
        expectStopBox(guard.caption, guard.text);
        expectNoBox();
        if (guard.menu != 0) {
            torvane().command(guard.menu);
            expectStopBox(guard.caption, guard.text);
            expectNoBox();
        }
        EXPECT_EQ(torvane().logList().rowCount(), rows) << "the command went on";
    }
};

TEST_F(GuardTest, CommandsAreRefusedBeforeTheDrivesAreLoaded) {
    if (torvane().driveList().rowCount() != 0) {
        restart(layOutBench());
    }
    expectGuards(kBeforeLoading);
    const int rows = torvane().logList().rowCount();
    torvane().command(kMenuBitLocker);
    expectBox("****** CHOOSE A DRIVE ******", "Please choose a drive to check for BITLOCKER encryption.",
              BoxIcon::kExclamation, "OK");
    expectNoBox();
    EXPECT_EQ(torvane().logList().rowCount(), rows) << "the command went on";
}

TEST_F(GuardTest, CommandsAreRefusedWhileNoDriveIsChosen) {
    chooseNothing();
    expectGuards(kNothingChosen);
}

TEST_F(GuardTest, ATickedDriveIsNotActive) {
    chooseNothing();
    torvane().driveList().setTicked(1, true);
    expectGuards(kActiveDriveGuards);
}

TEST_F(GuardTest, AnActiveDriveIsNotTicked) {
    chooseNothing();
    torvane().driveList().click(1);
    expectGuards(kNoneTickedGuards);
}

TEST_F(GuardTest, TwoTickedDrivesAreTooManyAndStayTicked) {
    chooseNothing();
    torvane().driveList().setTicked(0, true);
    torvane().driveList().setTicked(1, true);
    expectGuards(kTwoTickedGuards);
    EXPECT_TRUE(torvane().driveList().ticked(0));
    EXPECT_TRUE(torvane().driveList().ticked(1));
}

} // namespace
} // namespace torvane::driver
