// Two programs on one machine: the second looks, but leaves the drives of the first alone.

#include "tests/ui/driver/input.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace torvane::driver {
namespace {

using ::testing::HasSubstr;

constexpr int kExitTest = 1042;
constexpr int kStartTest = 1043;
constexpr int kStatusLabel = 7401;
constexpr int kHexPane = 7410;

class TwoProgramsTest : public ::testing::Test {
  protected:
    TwoProgramsTest() {
        // Drive 1 keeps who reads half a gibibyte of it, until the bench is told to hurry.
        const BenchFolder bench = pairBench().drive("1-nvme", R"({"number": 1, "bus": "nvme", "size": "8 GiB",
            "road": "nvme-query", "backing": {"pattern": "zero"},
            "identity": {"product": "Tarn N256", "revision": "2B3Q", "serial": "TN256-0042"},
            "faults": {"slow": [{"firstSector": 1048576, "milliseconds": 600000}]}})");
        const Launch launch = freshRun("TwoPrograms", bench);
        first_ = std::make_unique<Program>(launch);
        second_ = std::make_unique<Program>(launch);
    }

    static Window openCriticalTest(const Program& program) {
        const TorvaneWindow torvane(program);
        bringToFront(program.mainWindow());
        torvane.loadDrivesOnce();
        torvane.driveList().click(1);
        torvane.press(kCriticalTest);
        return program.awaitDialog();
    }

    std::unique_ptr<Program> first_;
    std::unique_ptr<Program> second_;
};

TEST_F(TwoProgramsTest, TheSecondLooksButStartsNothingOnADriveOfTheFirst) {
    ASSERT_TRUE(first_->mainWindow().exists());
    ASSERT_TRUE(second_->mainWindow().exists());
    // Each lists the drives while the other does nothing with them.
    TorvaneWindow(*second_).loadDrives();
    press(openCriticalTest(*first_).child(kStartTest));
    await("the first test is at work", [&] { return !first_->benchLog({"target=drive:1", "request=wait"}).empty(); });

    const Window test = openCriticalTest(*second_);
    press(test.child(kStartTest));
    const MessageBoxWindow box = second_->awaitBoxOver(test);
    EXPECT_EQ(box.caption(), "***** DRIVE IN USE *****");
    EXPECT_THAT(box.text(), HasSubstr("Drive 1 - Tarn N256 TN256-0042 is used by another Torvane on this computer."));
    box.answer("OK");
    EXPECT_EQ(test.child(kStatusLabel).text(), "Status: Another Torvane uses this drive");
    press(test.child(kExitTest));
    second_->awaitBoxOver(test).answer("Yes");
    await("the dialog has closed", [&] { return !test.exists(); });

    // Looking is no job.
    TorvaneWindow(*second_).press(kQuickDiskView);
    EXPECT_TRUE(second_->awaitDialog().hasChild(kHexPane));
    second_->awaitDialog().post(WM_CLOSE);
    await("the viewer has closed", [&] { return !second_->dialog(); });

    // What a program has ends with it, also when it crashes.
    first_->kill();
    const Window again = openCriticalTest(*second_);
    press(again.child(kStartTest));
    await("the second reads", [&] {
        return again.child(kStatusLabel).text() != "Status: Another Torvane uses this drive" &&
               second_->benchLog({"target=drive:1", "request=wait"}).size() > 1;
    });
}

} // namespace
} // namespace torvane::driver
