#include "tests/ui/copy_ui_test.h"

#include <optional>

namespace torvane::driver {
namespace {

/// Every test starts the program anew, because it ends it in the middle of its work.
class CopyFaultsTest : public CopyUiTest {
  protected:
    void SetUp() override {
        UiTest::SetUp();
        leaveProgramUsed();
    }

    /// The image that is being written in the folder; none before there is one.
    [[nodiscard]] static std::optional<std::filesystem::path> imageIn(const std::filesystem::path& folder) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            if (entry.path().extension() == ".img") {
                return entry.path();
            }
        }
        return std::nullopt;
    }
    [[nodiscard]] static std::uintmax_t sizeOf(const std::optional<std::filesystem::path>& file) {
        std::error_code error;
        const std::uintmax_t size = file ? std::filesystem::file_size(*file, error) : 0;
        return error ? 0 : size;
    }
};

TEST_F(CopyFaultsTest, ProgramThatIsKilledLeavesAPartialImageAndTheNextStartIsClean) {
    constexpr std::uintmax_t kFirstBlock = 32 * kMebibyte;
    // The kill comes in the middle.
    useBench(copyBenchHeldAt(kInSecondBlock));
    const std::filesystem::path folder = emptyFolder("killed");
    const CopyDialogWindow dialog = openImage("SOURCE", folder);
    // The folder is one of the machine's own: nothing is written anywhere else.
    ASSERT_TRUE(dialog.window().child(kFolderText).text().ends_with("killed"))
        << dialog.window().child(kFolderText).text();
    dialog.start();
    await("the first block is in the image", [&] { return sizeOf(imageIn(folder)) >= kFirstBlock; });
    const Launch again{workbenchFolder() / "bench.exe",
                       program().folder().parent_path() / "bench",
                       program().folder() / "Torvane.exe",
                       {}};
    program().kill();
    await("the program is gone", [&] { return !program().running(); });

    const std::string image = readFile(onlyFile(folder, ".img"));
    EXPECT_EQ(image.size(), kFirstBlock);
    EXPECT_TRUE(image == noise(7, 0, kFirstBlock)) << "what was written is the drive's";

    const Program next(again);
    const TorvaneWindow torvane(next);
    torvane.loadDrives();
    EXPECT_FALSE(next.dialog()) << "something is asked";
    ASSERT_EQ(torvane.driveList().rowCount(), 4);
    for (int row = 0; row < 4; ++row) {
        EXPECT_EQ(torvane.driveList().cell(row, 5), "Idle");
        EXPECT_FALSE(torvane.driveList().ticked(row));
    }
}

/// A drive that tells a capacity of no bytes, from the list on.
class DriveOfNoBytesTest : public CopyUiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        return copyBench().drive("4-nothing", R"({"number": 4, "bus": "nvme", "size": 0, "road": "nvme-query",
        "identity": {"product": "NOTHING", "revision": "1", "serial": "NIL-4"}})");
    }
};

TEST_F(DriveOfNoBytesTest, IsListedWithoutASectorAndImagedToAnEmptyFileWithTheDigestOfNothing) {
    torvane().loadDrivesOnce();
    const ListView drives = torvane().driveList();
    const int row = drives.rowWith(0, "NOTHING");
    EXPECT_EQ(drives.cell(row, 2), "0");
    EXPECT_EQ(drives.cell(row, 3), "0.00");

    const std::filesystem::path folder = emptyFolder("nothing");
    const CopyDialogWindow dialog = openForensic("NOTHING", folder);
    dialog.start();
    dialog.awaitStatus(" Image SUCCESSFULLY Completed");
    expectBoxOver(dialog, "****** VERIFY HASH ******", "Would you like to Verify the Image HASH?", BoxIcon::kNone,
                  "Yes");
    expectBoxOver(dialog, "****** VERIFY SUCCEEDED ******", "CREATED File has been verified", BoxIcon::kNone, "OK");
    awaitDriveStatus("NOTHING", "COMPLETED, verified");
    dialog.leave();
    EXPECT_EQ(readFile(onlyFile(folder, ".img")), "");
    EXPECT_TRUE(readFile(onlyFile(folder, ".txt", "MD5-HASH--"))
                    .ends_with("Total Sectors:\t[0]\nHASH:\t\t\tD4 1D 8C D9 8F 00 B2 04 E9 80 09 98 EC F8 42 7E "));
    EXPECT_EQ(program().benchLog({"target=drive:4", "request=read"}).size(), 0U);
}

} // namespace
} // namespace torvane::driver
