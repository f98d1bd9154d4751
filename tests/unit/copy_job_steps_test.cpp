#include "copy/jobs/job_steps.h"

#include "records/drive_record.h"
#include "tests/unit/copy_model/script.h"
#include "tests/unit/copy_model/scripted_system.h"

#include <gtest/gtest.h>

#include <thread>

namespace torvane {
namespace {

TEST(BadReads, AreAllCountedWhenTwoThreadsCountOnOneDrive) {
    constexpr std::uint64_t kReads = 300000;
    DriveRecord drive;
    drive.bytesPerSector = 512;
    const auto count = [&] {
        for (std::uint64_t read = 0; read < kReads; ++read) {
            static_cast<void>(countBadRead(drive, 0));
        }
    };
    std::thread other(count);
    count();
    other.join();
    EXPECT_EQ(drive.badReadCount, 2 * kReads);
}

TEST(RunningFlag, StaysDownForAJobThatWasAskedToStopSinceItsStart) {
    testing::World world(testing::ScriptMaker(1).make());
    testing::ScriptedSystem system(world);
    const CopyJob job{.state = system.state,
                      .running = world.words.running,
                      .system = system,
                      .display = system,
                      .destinationPath = {}};
    EXPECT_TRUE(raiseRunning(job));
    EXPECT_EQ(job.running, 1);
    job.state.stopAsked = 1;
    EXPECT_FALSE(raiseRunning(job));
    EXPECT_EQ(job.running, 0);
}

} // namespace
} // namespace torvane
