#include "copy/job_steps.h"

#include "discovery/drive_record.h"

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

} // namespace
} // namespace torvane
