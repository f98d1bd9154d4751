#include "scan/scan_watch.h"

#include "jobs/jobs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace torvane {
namespace {

using ::testing::ElementsAre;
using namespace std::chrono_literals;

class ScanWatchTest : public ::testing::Test {
  protected:
    bool goesOn(std::chrono::milliseconds since) { return watch_.mayGoOn({"smartctl", "drive 3", since}); }

    Jobs jobs_;
    JobClaim claim_ = jobs_.begin(JobKind::kScan).value();
    std::vector<std::string> shown_;
    ScanWatch watch_{claim_, [this](const std::string& text) { shown_.push_back(text); }};
};

TEST_F(ScanWatchTest, SaysOnceASecondWhoTakesLongAndTheStageAgainAfterwards) {
    watch_.enterStage("Loading Drive Devices");
    for (const auto since : {50ms, 4900ms, 5000ms, 5050ms, 6010ms}) {
        EXPECT_TRUE(goesOn(since));
    }
    watch_.ended();
    EXPECT_THAT(shown_, ElementsAre("Loading Drive Devices", "still waiting for smartctl on drive 3, 5 s",
                                    "still waiting for smartctl on drive 3, 6 s", "Loading Drive Devices"));
}

TEST_F(ScanWatchTest, AQuickToolChangesNothingThatIsShown) {
    watch_.enterStage("Loading Drive Devices");
    EXPECT_TRUE(goesOn(50ms));
    watch_.ended();
    EXPECT_THAT(shown_, ElementsAre("Loading Drive Devices"));
}

TEST_F(ScanWatchTest, AStopEndsTheToolAfterFiveSecondsAndLetsNoOtherBegin) {
    EXPECT_TRUE(watch_.mayBegin());
    EXPECT_TRUE(goesOn(1000ms));
    jobs_.askToStop();
    EXPECT_FALSE(watch_.mayBegin());
    EXPECT_TRUE(goesOn(1050ms));
    EXPECT_TRUE(goesOn(6000ms));
    EXPECT_FALSE(goesOn(6050ms));
    watch_.ended();
    EXPECT_FALSE(watch_.mayBegin());
}

} // namespace
} // namespace torvane
