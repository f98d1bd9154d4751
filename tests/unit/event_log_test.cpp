#include "state/event_log.h"

#include "base/local_moment.h"
#include "state/app_state.h"
#include "state/log_row.h"
#include "tests/support/recording_log_file.h"
#include "tests/support/recording_main_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <thread>

namespace torvane::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(EventLogTest, DeliversTheFormattedRow) {
    RecordingMainView view;
    const ViewInstalled installed(appState(), view);
    LogEvent("ERROR", "Could not Load File [%s] into buffer, try %d", "PHYS3.txt", 2);
    ASSERT_EQ(view.logRows().size(), 1U);
    const LogRow row = view.logRows().front();
    EXPECT_EQ(row.category, "ERROR");
    EXPECT_EQ(row.message, "Could not Load File [PHYS3.txt] into buffer, try 2");
}

TEST(EventLogTest, StampsTheLocalDateAndTime) {
    RecordingMainView view;
    const ViewInstalled installed(appState(), view);
    const LocalMoment before = localNow();
    LogEvent("STATUS", "now");
    const LogRow row = view.logRows().front();
    EXPECT_TRUE(std::regex_match(row.date, std::regex(R"(\d\d/\d\d/\d\d\d\d)"))) << row.date;
    EXPECT_TRUE(std::regex_match(row.time, std::regex(R"(\d\d:\d\d:\d\d)"))) << row.time;
    const LogRow then = makeLogRow("STATUS", before, "now");
    const LogRow now = makeLogRow("STATUS", localNow(), "now");
    const auto moment = [](const LogRow& each) { return each.date.substr(6) + each.date.substr(0, 5) + each.time; };
    EXPECT_LE(moment(then), moment(row));
    EXPECT_LE(moment(row), moment(now));
}

TEST(EventLogTest, OutsideTextIsNeverAFormat) {
    RecordingMainView view;
    const ViewInstalled installed(appState(), view);
    LogEvent("STATUS", "%s", "100%s%n%d");
    EXPECT_TRUE(view.hasLog("STATUS", "100%s%n%d"));
}

TEST(EventLogTest, WithoutAWindowTheRowIsDropped) {
    ASSERT_EQ(appState().view, nullptr);
    LogEvent("STATUS", "nobody listens");
}

TEST(EventLogTest, RowsAreKeptInTheFileToo) {
    RecordingMainView view;
    const ViewInstalled installed(appState(), view);
    RecordingLogFile file;
    LogEvent("ERROR", "sector %d", 7);
    EXPECT_THAT(file.messages("ERROR"), ElementsAre("sector 7"));
    EXPECT_THAT(view.messages("ERROR"), ElementsAre("sector 7"));
}

TEST(EventLogTest, RowsForTheFileAloneAreNotShown) {
    RecordingMainView view;
    const ViewInstalled installed(appState(), view);
    RecordingLogFile file;
    LogToFile("JOB", "drive %d", 3);
    EXPECT_THAT(file.messages("JOB"), ElementsAre("drive 3"));
    EXPECT_THAT(view.logRows(), IsEmpty());
}

TEST(EventLogTest, TheFileGetsItsRowsWithoutAWindowToo) {
    RecordingLogFile file;
    LogEvent("ERROR", "before there is a window");
    EXPECT_THAT(file.messages("ERROR"), ElementsAre("before there is a window"));
}

TEST(EventLogTest, WhatTheFileComplainsOfIsShownAndNotKept) {
    RecordingMainView view;
    const ViewInstalled installed(appState(), view);
    RecordingLogFile file;
    file.complain("no room");
    LogEvent("STATUS", "first");
    LogToFile("JOB", "second");
    EXPECT_THAT(view.messages("ERROR"), ElementsAre("no room"));
    EXPECT_THAT(view.messages("STATUS"), ElementsAre("first"));
    EXPECT_THAT(file.messages("ERROR"), IsEmpty());
}

TEST(EventLogTest, TakesRowsFromManyThreads) {
    constexpr int kThreads = 8;
    constexpr int kRows = 200;
    RecordingMainView view;
    const ViewInstalled installed(appState(), view);
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([thread] {
            for (int row = 0; row < kRows; ++row) {
                LogEvent("STATUS", "%d.%d", thread, row);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(view.logRows().size(), static_cast<std::size_t>(kThreads * kRows));
}

} // namespace
} // namespace torvane::testing
