#include "tests/ui/driver/resource_counts.h"
#include "tests/ui/ui_test.h"

#include <algorithm>

namespace torvane::driver {
namespace {

class ResourcesTest : public UiTest {
  protected:
    [[nodiscard]] ResourceCounts count() const {
        torvane().window().settle();
        return countResources(program().processId());
    }
    /// The lowest counts of a few readings: a thread that is about to end still holds its handles.
    [[nodiscard]] ResourceCounts settledCount() const {
        ResourceCounts lowest = count();
        (void)waitUntil(
            [&] {
                const ResourceCounts now = count();
                lowest.kernelHandles = std::min(lowest.kernelHandles, now.kernelHandles);
                lowest.gdiObjects = std::min(lowest.gdiObjects, now.gdiObjects);
                lowest.windows = std::min(lowest.windows, now.windows);
                return false;
            },
            std::chrono::seconds(1));
        return lowest;
    }
    /// The counts after `rounds` more rounds do not exceed those after a few for warming up.
    template <typename Round>
    void expectNoGrowth(int rounds, Round round) {
        constexpr int kWarmUp = 4;
        for (int i = 0; i < kWarmUp; ++i) {
            round(i);
        }
        const ResourceCounts before = settledCount();
        for (int i = 0; i < rounds; ++i) {
            round(i);
        }
        const ResourceCounts after = settledCount();
        // One leak in each round would show as `rounds`; the system's own caches may still take a few.
        constexpr int kSlack = 6;
        EXPECT_LE(after.kernelHandles, before.kernelHandles + kSlack) << before << " became " << after;
        EXPECT_LE(after.gdiObjects, before.gdiObjects + kSlack) << before << " became " << after;
        EXPECT_LE(after.windows, before.windows) << before << " became " << after;
    }
};

TEST_F(ResourcesTest, LoadingDrivesAgainAndAgainLeaksNothing) {
    expectNoGrowth(20, [this](int) {
        torvane().loadDrives();
        torvane().awaitProgressHidden();
    });
}

TEST_F(ResourcesTest, OpeningAndClosingTheLogLeaksNothing) {
    torvane().loadDrives();
    expectNoGrowth(40, [this](int) { torvane().press(kLogToggle); });
}

TEST_F(ResourcesTest, ChoosingDrivesLeaksNothing) {
    torvane().loadDrives();
    expectNoGrowth(40, [this](int i) { torvane().driveList().click(i % 4); });
}

TEST_F(ResourcesTest, BoxesLeakNothing) {
    restart(smallBench());
    expectNoGrowth(30, [this](int) {
        torvane().press(kQuickDiskView);
        program().awaitBox().answer("OK");
    });
}

} // namespace
} // namespace torvane::driver
