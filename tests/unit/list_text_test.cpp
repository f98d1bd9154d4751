#include "window/list_text.h"

#include <gtest/gtest.h>

#include <vector>

namespace torvane {
namespace {

TEST(RowsAsText, OfOneRowAreItsCellsWithTabsBetween) {
    EXPECT_EQ(rowsAsText({}), "");
    EXPECT_EQ(rowsAsText(std::vector<RowTexts>{{"ERROR", "11/22/2026", "20:15:03", "BAD READ BLOCK"}}),
              "ERROR\t11/22/2026\t20:15:03\tBAD READ BLOCK");
    EXPECT_EQ(rowsAsText(std::vector<RowTexts>{{"Model", "", "Idle"}}), "Model\t\tIdle");
}

TEST(RowsAsText, OfMoreRowsAreAsManyLines) {
    EXPECT_EQ(rowsAsText(std::vector<RowTexts>{{"a", "b"}, {}, {"c"}}), "a\tb\r\n\r\nc");
}

TEST(RowsAsText, HaveNoOtherTabsAndLineEnds) {
    EXPECT_EQ(rowsAsText(std::vector<RowTexts>{{"one\ttwo\r\nthree", "gr\xC3\xBC\xC3\x9F"}}),
              "one two  three\tgr\xC3\xBC\xC3\x9F");
}

TEST(LogAsText, HasTheLinesOfTheFileOfTheDay) {
    EXPECT_EQ(logAsText({}), "");
    EXPECT_EQ(logAsText(std::vector<RowTexts>{
                  {"ERROR", "11/22/2026", "20:15:03", "BAD READ\r\nBLOCK"},
                  {"JOB", "11/22/2026", "20:15:04", "key 111111-222222-333333-444444-555555-666666-777777-888888 read"},
              }),
              "ERROR\t11/22/2026\t20:15:03\tBAD READ  BLOCK\r\n"
              "JOB\t11/22/2026\t20:15:04\tkey (recovery password) read\r\n");
}

TEST(SavedLogName, HasTheDay) {
    EXPECT_EQ(savedLogName({.year = 2026, .month = 3, .day = 9, .hour = 1, .minute = 2, .second = 3}),
              "Torvane log 2026-03-09.txt");
}

} // namespace
} // namespace torvane
