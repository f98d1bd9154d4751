#include "state/held_log_rows.h"

#include "state/app_state.h"
#include "state/event_log.h"
#include "tests/support/recording_log_file.h"
#include "tests/support/recording_main_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace torvane::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class HeldLogRowsTest : public ::testing::Test {
  protected:
    RecordingMainView view_;
    ViewInstalled installed_{appState(), view_};
    RecordingLogFile file_;
    HeldLogRows rows_;
};

TEST_F(HeldLogRowsTest, AreToldWhenTheyAreGivenOut) {
    {
        const LogRowsHeld held(rows_);
        LogEvent("ERROR", "sector %d", 7);
        LogEvent("ERROR", "100%s", "%n");
        LogToFile("JOB", "drive %d", 3);
    }
    EXPECT_THAT(view_.logRows(), IsEmpty());
    EXPECT_THAT(file_.messages("ERROR"), IsEmpty());
    LogEvent("STATUS", "between");
    rows_.giveOut();
    EXPECT_THAT(view_.calls(), ElementsAre("log STATUS: between", "log ERROR: sector 7", "log ERROR: 100%n"));
    EXPECT_THAT(file_.messages("ERROR"), ElementsAre("sector 7", "100%n"));
    EXPECT_THAT(file_.messages("JOB"), ElementsAre("drive 3"));
}

TEST_F(HeldLogRowsTest, AreGivenOutOnce) {
    rows_.add("ERROR", "row", false);
    rows_.giveOut();
    rows_.giveOut();
    EXPECT_THAT(view_.messages("ERROR"), ElementsAre("row"));
}

TEST_F(HeldLogRowsTest, AreThoseOfOneThreadAndOneScope) {
    HeldLogRows inner;
    {
        const LogRowsHeld held(rows_);
        std::thread([] { LogEvent("ERROR", "of another thread"); }).join();
        {
            const LogRowsHeld heldInside(inner);
            LogEvent("ERROR", "inside");
        }
        LogEvent("ERROR", "around");
    }
    LogEvent("ERROR", "behind");
    EXPECT_THAT(view_.messages("ERROR"), ElementsAre("of another thread", "behind"));
    inner.giveOut();
    rows_.giveOut();
    EXPECT_THAT(view_.messages("ERROR"), ElementsAre("of another thread", "behind", "inside", "around"));
}

} // namespace
} // namespace torvane::testing
