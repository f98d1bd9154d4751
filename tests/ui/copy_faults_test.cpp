#include "tests/ui/copy_ui_test.h"

#include <optional>

namespace torvane::driver {
namespace {

/// Every test starts the program anew, because it ends it in the middle of its work.
class CopyFaultsTest : public CopyUiTest {
  protected:
    void SetUp() override {
        CopyUiTest::SetUp();
        leaveProgramUsed();
    }

    /// The image that is being written in the folder; none before there is one.
    [[nodiscard]] static std::optional<std::filesystem::path> imageIn(const std::filesystem::path& folder) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            return entry.path();
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
    // The second block takes so long that the kill surely comes in the middle.
    useBench(copyBenchWithFaults(R"({"slow": [{"firstSector": 70000, "milliseconds": 20000}]})"));
    const std::filesystem::path folder = emptyFolder("killed");
    const CopyDialogWindow dialog = openImage("SOURCE", folder);
    // The folder is one of the machine's own: nothing is written anywhere else.
    ASSERT_TRUE(dialog.window().child(kFolderText).text().ends_with("killed"))
        << dialog.window().child(kFolderText).text();
    dialog.start();
    await("the first block is in the image", [&] { return sizeOf(imageIn(folder)) >= kFirstBlock; });
    const Launch again{workbenchFolder() / "bench.exe", program().folder().parent_path() / "bench",
                       program().folder() / "Torvane.exe"};
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

} // namespace
} // namespace torvane::driver
