// What a copy dialog tells beside its status line while its job runs.

#include "tests/ui/copy_ui_test.h"
#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/expect_soon.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <regex>
#include <string>

namespace torvane::driver {
namespace {

namespace fs = std::filesystem;

using ::testing::HasSubstr;

constexpr COLORREF kLossesColour = RGB(176, 0, 0);

/// The source's first block has a bad sector, and the second one is held up.
class ProgressTest : public CopyUiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        return copyBenchWithFaults(R"({"reads": [{"firstSector": 5}], "slow": [{"firstSector": )" +
                                   std::to_string(kInSecondBlock) + R"(, "milliseconds": 600000}]})");
    }
    void SetUp() override {
        UiTest::SetUp();
        program().takeTime();
        leaveProgramUsed();
    }

    [[nodiscard]] static std::string placeOf(const CopyDialogWindow& dialog) {
        return dialog.window().child(kFolderText).text();
    }
};

TEST_F(ProgressTest, IsToldWithRateTimeAndLossesWhileAReadHangs) {
    // Where the system has no task bar that shows progress, its message does no harm.
    torvane().window().post(RegisterWindowMessageA("TaskbarButtonCreated"));
    const CopyDialogWindow dialog = openClone("SOURCE");
    EXPECT_EQ(dialog.losses().text(), "");
    startOnto(dialog, "TARGET");
    const std::regex told(R"(32\.0 of 70\.0 MB, [0-9]+ [KM]B/s, 0:0[0-9]:[0-9]{2} elapsed; 1 unreadable block)");
    await("the first block is told", [&] { return std::regex_match(dialog.losses().text(), told); });
    const std::string first = dialog.losses().text();
    EXPECT_GT(Picture::atRest(dialog.losses().rect()).count(kLossesColour), 20);
    await("the time goes on", [&] { return dialog.losses().text() != first; });
    await("the rate falls", [&] { return dialog.losses().text().find("MB, 0 MB/s, 0:0") != std::string::npos; });
    EXPECT_TRUE(std::regex_match(dialog.losses().text(), told)) << dialog.losses().text();
    program().hurry();
    dialog.awaitStatus(" Image Completed");
    EXPECT_EQ(dialog.losses().text(), "1 unreadable block");
    dialog.leave();
}

TEST_F(ProgressTest, OfAnImageTellsItsWholeNameOnceItIsThere) {
    const fs::path folder = emptyFolder("a folder whose name is longer than there is room for in a line of the dialog");
    const CopyDialogWindow dialog = openImage("SOURCE", folder);
    EXPECT_THAT(placeOf(dialog), ::testing::EndsWith("\\" + folder.filename().string()));
    dialog.start();
    dialog.awaitStatusStart(" Status: 00:00:");
    const std::string image = onlyFile(folder, ".img").filename().string();
    expectSoon(
        [&] { EXPECT_THAT(placeOf(dialog), ::testing::EndsWith("\\" + folder.filename().string() + "\\" + image)); });
    EXPECT_THAT(placeOf(dialog), ::testing::StartsWith("Into: "));
    hoverAt(centre(dialog.window().child(kFolderText).rect()));
    expectSoon([&] { EXPECT_EQ(toolTip(), placeOf(dialog)); });
    parkMouse();
    await("the run is told", [&] { return dialog.losses().text().find("32.0 of 70.0 MB, ") == 0; });
    program().hurry();
    dialog.awaitStatus(" Image  SUCCESSFULLY Completed");
    EXPECT_EQ(dialog.losses().text(), "1 unreadable block");
    EXPECT_THAT(placeOf(dialog), HasSubstr(image));
    dialog.leave();
}

} // namespace
} // namespace torvane::driver
