// Where the program is started from, and what it cannot write there.

#include "tests/ui/driver/input.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace torvane::driver {
namespace fs = std::filesystem;
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::vector<std::string> filesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& file : fs::directory_iterator(folder)) {
        names.push_back(file.path().filename().string());
    }
    return names;
}

/// The pair of drives; files that `refused` describes (an item of the bench's list) cannot be written.
BenchFolder benchRefusing(const std::string& refused) {
    return pairBench().bench(R"({"refusedFiles": [)" + refused + "]}");
}

TEST(StartFolderTest, StartedElsewhereTheProgramWorksInItsOwnFolder) {
    Launch launch = freshRun("StartFolder.Elsewhere", pairBench());
    launch.startFolder = launch.program.parent_path().parent_path() / "elsewhere";
    fs::create_directory(launch.startFolder);
    const Program program(launch);
    ASSERT_TRUE(program.mainWindow().exists()) << program.obituary();
    const TorvaneWindow torvane(program);
    torvane.loadDrives();
    EXPECT_EQ(torvane.driveList().rowCount(), 2);
    EXPECT_THAT(filesIn(program.folder()), Contains("PHYS0.txt"));
    EXPECT_THAT(filesIn(launch.startFolder), IsEmpty());
}

TEST(StartFolderTest, AFolderWithMessagesOfItsOwnStaysTheCurrentOne) {
    Launch launch = freshRun("StartFolder.Own", pairBench());
    launch.startFolder = launch.program.parent_path().parent_path() / "own";
    fs::create_directory(launch.startFolder);
    fs::copy(launch.program.parent_path() / "Message.db", launch.startFolder / "Message.db");
    fs::copy(launch.program.parent_path() / "TutorialData.db", launch.startFolder / "TutorialData.db");
    const Program program(launch);
    ASSERT_TRUE(program.mainWindow().exists()) << program.obituary();
    EXPECT_THAT(filesIn(launch.startFolder), Contains("Config.db")) << "the company's file is made";
}

TEST(StartFolderTest, MessagesThatCannotBeWrittenAreToldBeforeTheEnd) {
    Program program(
        freshRun("StartFolder.Messages", benchRefusing(R"({"path": "Message.db", "error": "ERROR_WRITE_PROTECT"})")));
    const MessageBoxWindow box = program.awaitBox();
    EXPECT_EQ(box.caption(), "***** MESSAGE FILE NOT OPENED *****");
    EXPECT_THAT(box.text(), AllOf(HasSubstr("[Message.db]"), HasSubstr(program.folder().make_preferred().string()),
                                  HasSubstr("(error 19)"), HasSubstr("Torvane ends, and has changed nothing")));
    EXPECT_EQ(box.icon(), BoxIcon::kStop);
    box.answer("OK");
    EXPECT_LT(program.awaitEnd(), 0xC0000000U) << program.obituary();
}

TEST(StartFolderTest, AFolderInWhichNoFileCanBeMadeIsToldOnce) {
    Program program(freshRun("StartFolder.ReadOnly", benchRefusing(R"({"path": "\\program\\", "newOnly": true})")));
    const MessageBoxWindow box = program.awaitBox();
    EXPECT_EQ(box.caption(), "***** FOLDER IS READ-ONLY *****");
    EXPECT_THAT(box.text(), AllOf(HasSubstr(program.folder().make_preferred().string()), HasSubstr("(error 5)"),
                                  HasSubstr("health readings"), HasSubstr("the log of the day")));
    EXPECT_EQ(box.icon(), BoxIcon::kStop);
    box.answer("OK");
    await("the main window is there", [&] {
        const std::vector<Window> windows = topLevelWindows(program.processId());
        return std::any_of(windows.begin(), windows.end(),
                           [](const Window& window) { return window.visible() && window.hasChild(kDriveList); });
    });
    EXPECT_FALSE(program.dialog());
    EXPECT_TRUE(program.running());
    const std::vector<std::string> files = filesIn(program.folder());
    EXPECT_FALSE(
        std::any_of(files.begin(), files.end(), [](const std::string& name) { return name.ends_with(".tmp"); }));
}

} // namespace
} // namespace torvane::driver
