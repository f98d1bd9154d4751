#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace torvane::driver {
namespace {

namespace fs = std::filesystem;

/// The lines of the days' log files beside the program, oldest first; there are two when a day has just begun.
std::vector<std::string> logFileLines(const fs::path& folder) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (std::regex_match(entry.path().filename().string(), std::regex(R"(Torvane \d{4}-\d\d-\d\d\.log)"))) {
            files.push_back(entry.path());
        }
    }
    std::ranges::sort(files);
    std::vector<std::string> lines;
    for (const fs::path& file : files) {
        std::istringstream text(readFile(file));
        for (std::string line; std::getline(text, line);) {
            lines.push_back(line);
        }
    }
    return lines;
}

using LogFileTest = UiTest;

TEST_F(LogFileTest, KeepsEveryRowOfTheListBesideTheProgram) {
    torvane().loadDrives();
    std::vector<std::string> rows;
    for (const LogEntry& row : torvane().log()) {
        rows.push_back(row.type + '\t' + row.date + '\t' + row.time + '\t' + row.message + '\r');
    }
    EXPECT_GE(rows.size(), 2U);
    EXPECT_EQ(logFileLines(program().folder()), rows);
}

} // namespace
} // namespace torvane::driver
