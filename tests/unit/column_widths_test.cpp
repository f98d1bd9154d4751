#include "window/column_widths.h"

#include <gtest/gtest.h>

#include <string>

namespace torvane {
namespace {

TEST(ColumnWidthsTest, AreReadAsTheyWereWritten) {
    ColumnWidths widths;
    EXPECT_EQ(columnWidthsText(widths), "Drives 250 150 90 85 120 460\r\nLog 100 100 100 850\r\n");
    widths.drives = {8, 300, 91, 86, 4000, 460};
    widths.log = {50, 60, 70, 1200};
    EXPECT_EQ(columnWidthsOf(columnWidthsText(widths)), widths);
}

TEST(ColumnWidthsTest, ATextOfAnotherFormIsNone) {
    const std::string whole = columnWidthsText({});
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_EQ(columnWidthsOf(whole.substr(0, length)), std::nullopt) << length;
    }
    for (const char* const text : {"Drives 250 150 90 85 120 460 1\r\nLog 100 100 100 850\r\n",
                                   "Drives 250 150 90 85 120 x\r\nLog 100 100 100 850\r\n",
                                   "Drives 250 150 90 85 120\r\nLog 100 100 100 850\r\n",
                                   "Drives 250 150 90 85 120 460\r\nlog 100 100 100 850\r\n",
                                   "Drives 250 150 90 85 120 460\nLog 100 100 100 850\n",
                                   "Drives 250 150 90 85 120 460\r\nLog 100 100 100 850\r\nmore"}) {
        EXPECT_EQ(columnWidthsOf(text), std::nullopt) << text;
    }
}

TEST(ColumnWidthsTest, AWidthThatNobodyCouldHaveDrawnIsNone) {
    for (const char* const width : {"7", "4001", "0", "-100", "99999999999999999999"}) {
        const std::string text = std::string("Drives 250 150 90 85 120 ") + width + "\r\nLog 100 100 100 850\r\n";
        EXPECT_EQ(columnWidthsOf(text), std::nullopt) << width;
    }
}

} // namespace
} // namespace torvane
