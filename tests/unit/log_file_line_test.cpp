#include "state/log_file_line.h"

#include "state/log_row.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

constexpr LocalMoment kMoment{.year = 2026, .month = 11, .day = 2, .hour = 3, .minute = 4, .second = 5};
constexpr const char* kPassword = "111111-222222-333333-444444-555555-666666-777777-888888";

std::string lineOf(std::string message) {
    return logFileLine(makeLogRow("STATUS", kMoment, std::move(message)));
}

/// The line's last column.
std::string messageOf(std::string message) {
    const std::string line = lineOf(std::move(message));
    const std::size_t start = line.find_last_of('\t') + 1;
    return line.substr(start, line.size() - start - 2);
}

TEST(LogFileLine, HasTheListsFourColumns) {
    EXPECT_EQ(lineOf("Beginning Drive Scan"), "STATUS\t11/02/2026\t03:04:05\tBeginning Drive Scan\r\n");
}

TEST(LogFileLine, StaysOneLineWhateverItsTextHolds) {
    EXPECT_EQ(messageOf(std::string("a\tb\r\nc\x1B[2J\x7F\0d\n", 14)), "a b  c [2J  d ");
    EXPECT_EQ(logFileLine({"CAT\tEGORY", "da\nte", "ti\rme", ""}), "CAT EGORY\tda te\tti me\t\r\n");
}

TEST(LogFileLine, KeepsForeignLetters) {
    EXPECT_EQ(messageOf("M\xC3\xBCller \xE6\x9D\xB1"), "M\xC3\xBCller \xE6\x9D\xB1");
}

TEST(LogFileLine, HoldsNoRecoveryPassword) {
    const std::string password = kPassword;
    EXPECT_EQ(messageOf("E: " + password + "."), "E: (recovery password).");
    EXPECT_EQ(messageOf(password + password), "(recovery password)(recovery password)");
    EXPECT_EQ(messageOf("7" + password), "7(recovery password)") << "however it is stuck to other digits";
    EXPECT_EQ(messageOf(password.substr(1)), password.substr(1)) << "too short for one";
    EXPECT_EQ(messageOf("123456-654321"), "123456-654321");
}

TEST(LogFileLine, IsBounded) {
    EXPECT_EQ(messageOf(std::string(100'000, 'x')), std::string(4096, 'x'));
    EXPECT_EQ(messageOf(std::string(4095, 'x') + "\xC3\xBC"), std::string(4095, 'x')) << "no half a letter";
    EXPECT_EQ(messageOf(std::string(4060, 'x') + kPassword), std::string(4060, 'x') + "(recovery password)")
        << "nor half a password";
}

TEST(LogFileName, IsTheDays) {
    EXPECT_EQ(logFileName(kMoment), "Torvane 2026-11-02.log");
}

} // namespace
} // namespace torvane
