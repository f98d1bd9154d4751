#include "tests/ui/copy_ui_test.h"
#include "tests/ui/driver/input.h"
#include "tests/ui/expect_soon.h"

#include <gmock/gmock.h>

namespace torvane::driver {
namespace {

using ::testing::ElementsAre;

constexpr int kDestinationDrive = 1089;

std::string alike(int number, const std::string& volumes = "") {
    return R"({"number": )" + std::to_string(number) + R"(, "bus": "nvme", "size": "64 MiB", "road": "nvme-query",
        "identity": {"product": "TWIN", "revision": "1", "serial": "0000"}, "volumes": [)" +
           volumes + "]}";
}

/// A bench of drives 1, 2 and 3 that are alike; the third has volumes K: and M:.
class AlikeDrivesTest : public CopyUiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        return BenchFolder()
            .drive("1", alike(1))
            .drive("2", alike(2))
            .drive("3", alike(3, R"({"letter": "K", "extents": [{"offset": "1 MiB", "length": "1 MiB"}]},
                             {"letter": "M", "extents": [{"offset": "4 MiB", "length": "1 MiB"}]})"));
    }

    void expectTip(const ListView& list, int row, const std::string& text) const {
        hoverAt(centre(list.cellRect(row, 1)));
        expectSoon([&] { EXPECT_EQ(toolTip(), text); });
        parkMouse();
    }
};

TEST_F(AlikeDrivesTest, AreToldApartInTheDriveListByAToolTip) {
    torvane().loadDrivesOnce();
    const ListView drives = torvane().driveList();
    expectTip(drives, 1, "Drive 2 - TWIN - 0000 - 0.06 GB - no drive letters");
    expectTip(drives, 2, "Drive 3 - TWIN - 0000 - 0.06 GB - K: M:");
}

TEST_F(AlikeDrivesTest, AreToldApartAmongTheDestinationsOfAClone) {
    torvane().loadDrivesOnce();
    torvane().driveList().setTicked(0, true);
    pressCopyCommand(kClone);
    const CopyDialogWindow dialog(program().awaitDialog(), kCloneIds);
    const ListView destinations = dialog.destinations();
    ASSERT_EQ(destinations.columnCount(), 5);
    EXPECT_EQ(destinations.heading(3), "Drive");
    EXPECT_EQ(destinations.heading(4), "Volumes");
    EXPECT_THAT(destinations.row(0), ElementsAre("TWIN", "0000", "0.06 GB", "2", ""));
    EXPECT_THAT(destinations.row(1), ElementsAre("TWIN", "0000", "0.06 GB", "3", "K: M:"));
    EXPECT_EQ(destinations.window().style() & WS_HSCROLL, 0) << "all columns show";
    dialog.leave();
    torvane().driveList().setTicked(0, false);
}

TEST_F(AlikeDrivesTest, AreToldApartAmongTheDestinationsOfAnImageByALineAndAToolTip) {
    const std::filesystem::path image = emptyFolder("alike") / "disk.img";
    writeFile(image, std::string(512, '\0'));
    const CopyDialogWindow dialog = openImageToDrive(image);
    const ListView destinations = dialog.destinations();
    const Window line = dialog.window().child(kDestinationDrive);
    ASSERT_EQ(destinations.columnCount(), 3);
    EXPECT_EQ(line.text(), "");
    destinations.click(1);
    expectSoon([&] { EXPECT_EQ(line.text(), "Drive 2 - TWIN - 0000 - 0.06 GB - no drive letters"); });
    destinations.setTicked(2, true);
    // The one that is ticked counts.
    expectSoon([&] { EXPECT_EQ(line.text(), "Drive 3 - TWIN - 0000 - 0.06 GB - K: M:"); });
    expectTip(destinations, 0, "Drive 1 - TWIN - 0000 - 0.06 GB - no drive letters");
    dialog.leave();
}

} // namespace
} // namespace torvane::driver
