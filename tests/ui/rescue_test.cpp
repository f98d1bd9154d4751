#include "tests/ui/copy_ui_test.h"
#include "tests/ui/driver/input.h"
#include "tests/ui/driver/shell_dialogs.h"
#include "tests/ui/expect_soon.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace torvane::driver {
namespace {

namespace fs = std::filesystem;

using ::testing::AllOf;
using ::testing::HasSubstr;

constexpr int kOntoDrive = 1347;
constexpr int kNewImage = 1348;
constexpr int kOldImage = 1349;
constexpr int kAmounts = 1350;
constexpr int kReads = 1351;

constexpr std::size_t kSourceBytes = 70 * kMebibyte;

class RescueTest : public CopyUiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        return copyBenchWithFaults(R"({"reads": [{"firstSector": 70000}, {"firstSector": 90000, "sectors": 2}]})");
    }

    void intoNewImage(const CopyDialogWindow& dialog, const fs::path& folder) const {
        press(dialog.window().child(kNewImage));
        chooseFolder(program(), folder);
        expectSoon([&] {
            EXPECT_EQ(dialog.window().child(kFolderText).text(), "Into: " + fs::path(folder).make_preferred().string());
        });
    }
    void goOnWith(const CopyDialogWindow& dialog, const fs::path& image) const {
        press(dialog.window().child(kOldImage));
        chooseFile(program(), image);
        expectSoon([&] {
            EXPECT_EQ(dialog.window().child(kFolderText).text(), "Into: " + fs::path(image).make_preferred().string());
        });
    }
    static std::string text(const CopyDialogWindow& dialog, int id) { return dialog.window().child(id).text(); }

    /// The source with the marker in place of what cannot be read.
    [[nodiscard]] static std::string rescued() {
        std::string bytes = noise(7, 0, kSourceBytes);
        for (const std::size_t sector : {70000, 90000, 90001}) {
            bytes.replace(sector * 512, 512, unreadable(512));
        }
        return bytes;
    }
};

TEST_F(RescueTest, BringsWhatCanBeReadIntoAnImageAndShowsIt) {
    const fs::path folder = emptyFolder("rescued");
    const CopyDialogWindow dialog = openRescue("SOURCE");
    EXPECT_EQ(dialog.window().text(), "Rescue");
    dialog.start();
    expectBoxOver(dialog, "***** CHOOSE AN IMAGE *****",
                  "Please choose where the rescue goes: 'New Image...' for a new one, 'Go On With...' for one that has "
                  "its map beside it, or tick a drive",
                  BoxIcon::kStop, "OK");
    intoNewImage(dialog, folder);
    dialog.start();
    dialog.awaitStatus(" Rescue Completed, not everything could be read");
    expectSoon([&] {
        EXPECT_EQ(text(dialog, kAmounts), "Rescued 70.0 MB, bad 1.5 KB in 2 areas");
        EXPECT_THAT(text(dialog, kReads), AllOf(HasSubstr("reads failed"), HasSubstr("slowest read")));
        EXPECT_EQ(dialog.losses().text(), "1.5 KB of the source not copied");
    });
    EXPECT_TRUE(readFile(onlyFile(folder, ".img")) == rescued());
    EXPECT_THAT(readFile(onlyFile(folder, ".txt", "ACQUISITION")), HasSubstr("Job: Rescue"));
    dialog.leave();
    awaitDriveStatus("SOURCE", "BAD 1.5 KB of the source not copied");
}

TEST_F(RescueTest, KilledAgainAndAgainItGoesOnToTheSameEnd) {
    const BenchFolder slow = copyBenchWithFaults(R"({"reads": [{"firstSector": 70000},
        {"firstSector": 90000, "sectors": 2}], "slow": [{"firstSector": 20000, "milliseconds": 1500},
        {"firstSector": 60000, "milliseconds": 1500}, {"firstSector": 120000, "milliseconds": 1500}]})");
    useBench(slow);
    // Beside the run's folder, which begins anew with the program.
    const fs::path folder = program().folder().parent_path().parent_path() / "RescueTest-killed";
    fs::remove_all(folder);
    fs::create_directories(folder);
    {
        const CopyDialogWindow dialog = openRescue("SOURCE");
        intoNewImage(dialog, folder);
        dialog.start();
        dialog.awaitStatusStart(" Copying");
        program().kill();
    }
    const fs::path image = onlyFile(folder, ".img");
    for (int kills = 0; kills < 3; ++kills) {
        useBench(slow);
        const CopyDialogWindow dialog = openRescue("SOURCE");
        goOnWith(dialog, image);
        dialog.start();
        dialog.awaitStatusStart(" Copying");
        Sleep(300 * (kills + 1));
        program().kill();
    }
    useBench(slow);
    const CopyDialogWindow dialog = openRescue("SOURCE");
    goOnWith(dialog, image);
    dialog.start();
    dialog.awaitStatus(" Rescue Completed, not everything could be read");
    dialog.leave();
    EXPECT_TRUE(readFile(image) == rescued());
}

TEST_F(RescueTest, GoesOntoADriveAsWell) {
    const CopyDialogWindow dialog = openRescue("SOURCE");
    dialog.tickDestination("TARGET");
    expectSoon([&] { EXPECT_EQ(dialog.window().child(kOntoDrive).send(BM_GETCHECK), BST_CHECKED); });
    dialog.start();
    answerWarning("Yes");
    expectBoxOver(dialog, "***** BEGIN THE RESCUE ANEW *****",
                  "There is no map [RESCUE--SOURCE.SRC-1--TARGET.TGT-2.map]: the rescue begins anew, the DESTINATION "
                  "is cleaned, and what an earlier rescue has brought there is lost. Begin anew?",
                  BoxIcon::kNone, "Yes");
    dialog.awaitStatus(" Rescue Completed, not everything could be read");
    dialog.leave();
    EXPECT_TRUE(content(2, 0, kSourceBytes) == rescued());
    fs::remove(program().folder() / "RESCUE--SOURCE.SRC-1--TARGET.TGT-2.map");
    leaveProgramUsed();
}

} // namespace
} // namespace torvane::driver
