#include "tests/ui/driver/resource_counts.h"
#include "tests/ui/expect_soon.h"
#include "tests/ui/ui_test.h"

#include <algorithm>
#include <chrono>

namespace torvane::driver {
namespace {

class ResourcesTest : public UiTest {
  protected:
    // One drive: what is counted is rounds, and each costs a run of the tools for each drive.
    [[nodiscard]] BenchFolder layOutBench() const override {
        return BenchFolder().drive("0", R"({"number": 0, "bus": "nvme", "size": "256 GiB", "road": "nvme-query",
            "identity": {"product": "Tarn N256", "revision": "2B3Q", "serial": "TN256-0042"}})");
    }

    [[nodiscard]] ResourceCounts count() const {
        torvane().window().settle();
        return countResources(program().processId());
    }
    /// The lowest counts, when none has fallen for a while: a thread that is about to end still holds its handles.
    [[nodiscard]] ResourceCounts settledCount() const {
        constexpr std::chrono::milliseconds kStill{400};
        ResourceCounts lowest = count();
        auto since = std::chrono::steady_clock::now();
        await("the counts fall no more", [&] {
            const ResourceCounts lower = lowestOf(lowest, count());
            if (lower != lowest) {
                lowest = lower;
                since = std::chrono::steady_clock::now();
            }
            return std::chrono::steady_clock::now() - since >= kStill;
        });
        return lowest;
    }
    [[nodiscard]] static ResourceCounts lowestOf(const ResourceCounts& one, const ResourceCounts& other) {
        return {std::min(one.kernelHandles, other.kernelHandles), std::min(one.gdiObjects, other.gdiObjects),
                std::min(one.windows, other.windows)};
    }
    static constexpr int kWarmUp = 4;

    /// The counts after `rounds` more rounds do not exceed those after a few for warming up.
    template <typename Round>
    void expectNoGrowth(int rounds, Round round) {
        for (int i = 0; i < kWarmUp; ++i) {
            round(i);
        }
        const ResourceCounts before = settledCount();
        for (int i = 0; i < rounds; ++i) {
            round(i);
        }
        // One leak in each round would show as `rounds`; the system's own caches may still take a few.
        constexpr int kSlack = 6;
        expectSoon([&] {
            const ResourceCounts after = count();
            EXPECT_LE(after.kernelHandles, before.kernelHandles + kSlack) << before << " became " << after;
            EXPECT_LE(after.gdiObjects, before.gdiObjects + kSlack) << before << " became " << after;
            EXPECT_LE(after.windows, before.windows) << before << " became " << after;
        });
    }
};

// The other tests are worth something only when the counts see what the program takes.
TEST_F(ResourcesTest, CountsSeeTheOpenDrives) {
    restart(smallBench());
    const ResourceCounts before = settledCount();
    torvane().loadDrives();
    torvane().awaitProgressHidden();
    const ResourceCounts after = settledCount();
    EXPECT_GE(after.kernelHandles, before.kernelHandles + torvane().driveList().rowCount());
    EXPECT_GE(after.gdiObjects, 10);
    EXPECT_GE(after.windows, 30);
    leaveProgramUsed();
}

TEST_F(ResourcesTest, LoadingDrivesAgainAndAgainLeaksNothing) {
    constexpr int kScans = 8; // a leak in each one is more than the slack
    expectNoGrowth(kScans, [this](int i) {
        torvane().loadDrives();
        // The progress thread of the last scan has ended when it is counted.
        if (i == kWarmUp - 1 || i == kScans - 1) {
            torvane().awaitProgressHidden();
        }
    });
}

TEST_F(ResourcesTest, OpeningAndClosingTheLogLeaksNothing) {
    torvane().loadDrives();
    expectNoGrowth(40, [this](int) { torvane().press(kLogToggle); });
}

TEST_F(ResourcesTest, ChoosingDrivesLeaksNothing) {
    leaveProgramUsed();
    restart(pairBench());
    torvane().loadDrives();
    expectNoGrowth(40, [this](int i) { torvane().driveList().click(i % 2); });
}

TEST_F(ResourcesTest, EditingMessagesLeaksNothing) {
    expectNoGrowth(20, [this](int) {
        torvane().window().post(WM_SYSCOMMAND, 32);
        const Window editor = program().awaitDialog();
        editor.post(WM_COMMAND, 32781);
        await("the editor has closed", [&] { return !editor.exists(); });
    });
}

TEST_F(ResourcesTest, BoxesLeakNothing) {
    torvane().loadDrives(); // no drive is active after it
    expectNoGrowth(30, [this](int) {
        torvane().press(kQuickDiskView);
        program().awaitBox().answer("OK");
    });
}

} // namespace
} // namespace torvane::driver
