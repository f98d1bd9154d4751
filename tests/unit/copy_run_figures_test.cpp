#include "copy/jobs/run_figures.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

constexpr std::uint64_t kKibibyte = 1024;
constexpr std::uint64_t kMebibyte = 1024 * kKibibyte;
constexpr std::uint64_t kGibibyte = 1024 * kMebibyte;

std::string sizes(std::uint64_t done, std::uint64_t total) {
    const std::string text = runInWords({.done = done, .total = total, .losses = {}}, 0, 0);
    return text.substr(0, text.find(','));
}

std::string rate(std::uint64_t bytesPerSecond) {
    const std::string text = runInWords({}, bytesPerSecond, 0);
    const std::size_t begin = text.find(", ") + 2;
    return text.substr(begin, text.find(',', begin) - begin);
}

std::string elapsed(std::int64_t seconds) {
    const std::string text = runInWords({}, 0, seconds);
    return text.substr(text.rfind(", ") + 2);
}

TEST(RunInWords, TellsSizesRateAndTime) {
    EXPECT_EQ(runInWords({.done = 44238910095, .total = 500107862016, .losses = {}}, 118 * kMebibyte + 9, 362),
              "41.2 of 465.8 GB, 118 MB/s, 0:06:02 elapsed");
}

TEST(RunInWords, TellsWhatWasLostSoFarBehind) {
    const RunFigures run{.done = 3 * kMebibyte,
                         .total = 8 * kMebibyte,
                         .losses = {.unreadableBlocks = 2, .failedWrites = 1, .bytesNotCopied = 5 * kMebibyte}};
    EXPECT_EQ(runInWords(run, kMebibyte, 3),
              "3.0 of 8.0 MB, 1 MB/s, 0:00:03 elapsed; 2 unreadable blocks, 1 failed write");
}

TEST(RunInWords, TellsSizesInTheUnitOfTheWhole) {
    EXPECT_EQ(sizes(0, 0), "0 of 0 bytes");
    EXPECT_EQ(sizes(1, 1), "1 of 1 byte");
    EXPECT_EQ(sizes(512, 1023), "512 of 1023 bytes");
    EXPECT_EQ(sizes(512, kKibibyte), "0.5 of 1.0 KB");
    EXPECT_EQ(sizes(kMebibyte, 1536 * kKibibyte), "1.0 of 1.5 MB");
    EXPECT_EQ(sizes(kMebibyte, 3 * kGibibyte), "0.0 of 3.0 GB");
    EXPECT_EQ(sizes(512 * kGibibyte, 4096 * kGibibyte), "512.0 of 4096.0 GB");
}

TEST(RunInWords, TellsALowRateInSmallerUnits) {
    EXPECT_EQ(rate(0), "0 MB/s");
    EXPECT_EQ(rate(1023), "0 MB/s");
    EXPECT_EQ(rate(kKibibyte), "1 KB/s");
    EXPECT_EQ(rate(kMebibyte - 1), "1023 KB/s");
    EXPECT_EQ(rate(kMebibyte), "1 MB/s");
    EXPECT_EQ(rate(3 * kGibibyte), "3072 MB/s");
}

TEST(RunInWords, TellsHoursMinutesAndSeconds) {
    EXPECT_EQ(elapsed(0), "0:00:00 elapsed");
    EXPECT_EQ(elapsed(59), "0:00:59 elapsed");
    EXPECT_EQ(elapsed(3661), "1:01:01 elapsed");
    EXPECT_EQ(elapsed(360000), "100:00:00 elapsed");
}

} // namespace
} // namespace torvane
