#include "copy/rescue/rescue_planner.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

TEST(RescuePlanner, BuildsAtAll) {
    SourceMap map(1 << 20);
    RescuePlanner planner(map, {}, {});
    int reads = 0;
    while (const auto step = planner.next()) {
        planner.hasRead(*step, 0);
        ++reads;
    }
    EXPECT_EQ(reads, 16);
    EXPECT_EQ(map.bytes(RangeStatus::kFinished), map.size());
}

} // namespace
} // namespace torvane
