#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/expect_soon.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

#include <dbt.h>

namespace torvane::driver {
namespace {

using ::testing::HasSubstr;

constexpr int kHeading = 1050;
constexpr int kActiveDrive = 1419;

/// Two drives that are listed, and one whose bus is not supported.
class FirstMinutesTest : public UiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        return pairBench().drive("2-sd", R"({"number": 2, "bus": "sd", "size": "1 GiB"})");
    }

    [[nodiscard]] std::string heading() const { return torvane().window().child(kHeading).text(); }

    /// What the system sends the window when a device of that class has come.
    void tellArrival(const GUID& deviceClass) const {
        DEV_BROADCAST_DEVICEINTERFACE_W told{};
        told.dbcc_size = sizeof(told);
        told.dbcc_devicetype = DBT_DEVTYP_DEVICEINTERFACE;
        told.dbcc_classguid = deviceClass;
        // The system itself carries what this message points to into the other process.
        torvane().window().send(WM_DEVICECHANGE, DBT_DEVICEARRIVAL, reinterpret_cast<LPARAM>(&told));
    }
};

constexpr GUID kDisks{0x53f56307, 0xb6bf, 0x11d0, {0x94, 0xf2, 0x00, 0xa0, 0xc9, 0x1e, 0xfb, 0x8b}};
constexpr GUID kVolumes{0x53f5630d, 0xb6bf, 0x11d0, {0x94, 0xf2, 0x00, 0xa0, 0xc9, 0x1e, 0xfb, 0x8b}};

TEST_F(FirstMinutesTest, SayWhatToDoWhatIsThereAndWhenItHasChanged) {
    EXPECT_EQ(heading(), "&Attached drives");
    parkMouse();
    torvane().window().awaitPainted();
    const RECT list = torvane().driveList().window().rect();
    expectSoon([&] { EXPECT_GT(Picture::ofScreen(list).count(RGB(0, 0, 128)), 20) << "\"Press Load Drives\""; });
    tellArrival(kDisks);
    EXPECT_EQ(heading(), "&Attached drives") << "nothing is out of date yet";

    torvane().loadDrives();
    EXPECT_EQ(heading(), "&Attached: 2 drives, 1 not shown: see log");
    tellArrival(kVolumes);
    EXPECT_EQ(heading(), "&Attached: 2 drives, 1 not shown: see log");
    tellArrival(kDisks);
    EXPECT_EQ(heading(), "&Attached: 2 drives, 1 not shown: see log. Drives have changed: Load Drives");
    EXPECT_EQ(torvane().driveList().rowCount(), 2) << "nothing is scanned by itself";
    torvane().loadDrives();
    EXPECT_EQ(heading(), "&Attached: 2 drives, 1 not shown: see log");
}

TEST_F(FirstMinutesTest, TellWhoseDialsAreShown) {
    torvane().loadDrivesOnce();
    torvane().awaitProgressHidden();
    const Window active = torvane().window().child(kActiveDrive);
    torvane().driveList().click(1);
    EXPECT_EQ(active.text(),
              "Active: Drive 1 - " + torvane().driveList().cell(1, 0) + " - " + torvane().driveList().cell(1, 1));
    expectSoon([&] { EXPECT_TRUE(active.visible()); });
    torvane().driveList().click(0);
    EXPECT_EQ(active.text(),
              "Active: Drive 0 - " + torvane().driveList().cell(0, 0) + " - " + torvane().driveList().cell(0, 1));
    torvane().loadDrives();
    EXPECT_EQ(active.text(), "") << "none is chosen any more";
    torvane().awaitProgressHidden();
    expectSoon([&] { EXPECT_TRUE(active.visible()) << "the scan's progress gives its place back"; });
}

TEST_F(FirstMinutesTest, EveryButtonTellsWhatItDoesAndHowLongItTakes) {
    torvane().loadDrivesOnce();
    torvane().driveList().click(0);
    hoverAt(centre(torvane().window().child(kNistTest).rect()));
    expectSoon([&] {
        EXPECT_THAT(toolTip(), HasSubstr("A sound drive like HALDANE HD5000 takes about 6 min; a failing one"));
    });
    parkMouse();
}

} // namespace
} // namespace torvane::driver
