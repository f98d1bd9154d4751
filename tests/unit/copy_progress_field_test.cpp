#include "copy/dialogs/progress_field.h"

#include <gtest/gtest.h>

#include <thread>

namespace torvane {
namespace {

constexpr std::uint64_t kMebibyte = 1048576;
constexpr std::int64_t kStart = 5000; // milliseconds

RunFigures figures(std::uint64_t mebibytes, std::uint64_t unreadable = 0) {
    return {.done = mebibytes * kMebibyte, .total = 8 * kMebibyte, .losses = {.unreadableBlocks = unreadable}};
}

TEST(ProgressField, HoldsTheWordsWhileNoRunIsUnderWay) {
    ProgressField field;
    EXPECT_EQ(field.content(kStart), ProgressField::Content{});
    field.setWords("1 failed write", true);
    EXPECT_EQ(field.content(kStart), (ProgressField::Content{"1 failed write", true}));
    EXPECT_FALSE(field.run());
}

TEST(ProgressField, ShowsARunInTheirPlaceUntilItEnds) {
    ProgressField field;
    field.setWords("Nothing was lost", false);
    field.showRun(figures(0), kStart);
    EXPECT_EQ(field.content(kStart).text, "0.0 of 8.0 MB, 0 MB/s, 0:00:00 elapsed");
    field.showRun(figures(4), kStart + 2000);
    EXPECT_EQ(field.content(kStart + 2000).text, "4.0 of 8.0 MB, 2 MB/s, 0:00:02 elapsed");
    EXPECT_EQ(field.content(kStart + 4000).text, "4.0 of 8.0 MB, 1 MB/s, 0:00:04 elapsed") << "the drive hangs";
    ASSERT_TRUE(field.run());
    EXPECT_EQ(field.run()->done, 4 * kMebibyte);
    field.endRun();
    EXPECT_EQ(field.content(kStart + 5000).text, "Nothing was lost");
    EXPECT_FALSE(field.run());
}

TEST(ProgressField, IsBadAsSoonAsSomethingIsLost) {
    ProgressField field;
    field.showRun(figures(1), kStart);
    EXPECT_FALSE(field.content(kStart).bad);
    field.showRun(figures(2, 1), kStart);
    EXPECT_TRUE(field.content(kStart).bad);
    EXPECT_EQ(field.content(kStart).text, "2.0 of 8.0 MB, 0 MB/s, 0:00:00 elapsed; 1 unreadable block");
}

TEST(ProgressField, WordsEndTheRunAndTheNextOneHasItsOwnTime) {
    ProgressField field;
    field.showRun(figures(8), kStart);
    field.setWords("Nothing was lost", false);
    EXPECT_EQ(field.content(kStart), (ProgressField::Content{"Nothing was lost", false}));
    field.showRun(figures(0), kStart + 60000);
    EXPECT_EQ(field.content(kStart + 61000).text, "0.0 of 8.0 MB, 0 MB/s, 0:00:01 elapsed");
}

TEST(ProgressField, IsAskedWhileItIsTold) {
    ProgressField field;
    std::thread job([&] {
        for (std::uint64_t i = 0; i < 1000; ++i) {
            field.showRun(figures(i / 125), kStart + static_cast<std::int64_t>(i));
        }
        field.setWords("Nothing was lost", false);
    });
    for (std::int64_t i = 0; i < 1000; ++i) {
        static_cast<void>(field.content(kStart + i));
        static_cast<void>(field.run());
    }
    job.join();
    EXPECT_EQ(field.content(kStart).text, "Nothing was lost");
}

} // namespace
} // namespace torvane
