// "Drive Details...": how the window opens, what it shows, and how that is carried away.

#include "tests/ui/clipboard.h"
#include "tests/ui/driver/input.h"
#include "tests/ui/driver/shell_dialogs.h"
#include "tests/ui/expect_soon.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

#include <commctrl.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace torvane::driver {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr WORD kDetailsKey = 'T';

constexpr int kPages = 1372;
constexpr int kText = 1373;
constexpr int kCopy = 1374;
constexpr int kSave = 1375;
constexpr int kFirstTable = 1376;

enum PageNumber : int { kDrivePage, kHealthPage, kAttributePage };

class DetailsTest : public UiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        BenchFolder folder;
        folder.drive("0", R"({"number": 0, "bus": "sata", "size": "512 GiB", "road": "ata",
            "identity": {"product": "HALDANE HD5000", "revision": "HA11", "serial": "HD5-000117"},
            "ata": {"smart": {"attributes": [{"id": 9, "value": 69, "worst": 68, "raw": 31877},
                                     {"id": 5, "value": 88, "worst": 87, "threshold": 5, "raw": 214}]}},
            "volumes": [{"letter": "C", "label": "SYSTEM", "extents": [{"offset": "1 MiB", "length": "400 GiB"}]}]})");
        folder.drive("1", R"({"number": 1, "bus": "nvme", "size": "256 GiB", "road": "nvme-query",
            "identity": {"product": "Tarn N256", "revision": "2B3Q"},
            "nvme": {"serial": "TN256-0042", "health": {"temperature": 314, "powerCycles": 911}}})");
        return folder;
    }

    [[nodiscard]] static bool menuIsOpen() { return Window(FindWindowA("#32768", nullptr)).visible(); }

    [[nodiscard]] Window openByMenu(int row) const {
        bringToFront(program().mainWindow());
        const ListView drives = torvane().driveList();
        clickAt(drives.window(), centre(drives.cellRect(row, 1)), MouseButton::kRight);
        await("the menu opens", [] { return menuIsOpen(); });
        pressKey(program().mainWindow(), kDetailsKey);
        return program().awaitDialog();
    }
    [[nodiscard]] static ListView table(const Window& details, int page) {
        return ListView(details.child(kFirstTable + page));
    }
    [[nodiscard]] static std::string valueOf(const Window& details, int page, const std::string& name) {
        const ListView rows = table(details, page);
        return rows.cell(rows.rowWith(0, name), 1);
    }
    static void doubleClick(const Window& list, POINT screenPlace) {
        POINT place = screenPlace;
        ScreenToClient(list.handle(), &place);
        list.post(WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(place.x, place.y));
        list.post(WM_LBUTTONUP, 0, MAKELPARAM(place.x, place.y));
    }
    static void leave(const Window& details) {
        pressKey(details, VK_ESCAPE);
        await("the details have closed", [&] { return !details.exists(); });
    }
};

TEST_F(DetailsTest, TellsTheDriveItsAttributesAndTheToolsText) {
    torvane().loadDrivesOnce();
    const Window details = openByMenu(0);
    EXPECT_THAT(details.text(), StartsWith("Drive Details -- Drive 0 - HALDANE HD5000"));
    EXPECT_EQ(focused(details).id(), kPages);
    EXPECT_EQ(valueOf(details, kDrivePage, "Serial number"), "HD5-000117");
    EXPECT_EQ(valueOf(details, kDrivePage, "Capacity"), "549,755,813,888 bytes");
    EXPECT_THAT(valueOf(details, kDrivePage, "Volume C:"), HasSubstr("SYSTEM"));
    pressKey(details, VK_DOWN);
    EXPECT_EQ(valueOf(details, kHealthPage, "Reallocated sectors"), "214");
    pressKey(details, VK_DOWN);
    const ListView attributes = table(details, kAttributePage);
    EXPECT_TRUE(attributes.window().visible());
    EXPECT_FALSE(table(details, kDrivePage).window().visible());
    const int row = attributes.rowWith(0, "5");
    EXPECT_EQ(attributes.cell(row, 2), "214");
    EXPECT_EQ(attributes.cell(row, 6), "NOT ZERO");
    attributes.click(row);
    pressKey(details, 'C', VK_CONTROL);
    expectSoon([] { EXPECT_THAT(clipboardText(), StartsWith("5\tReallocated_Sector_Ct\t214\t")); });
    clickAt(details.child(kPages), centre(details.child(kPages).rect()));
    pressKey(details, VK_END);
    EXPECT_TRUE(details.child(kText).visible());
    EXPECT_THAT(details.child(kText).text(), HasSubstr("START OF INFORMATION SECTION"));
    press(details.child(kCopy));
    expectSoon([] { EXPECT_THAT(clipboardText(), HasSubstr("START OF INFORMATION SECTION")); });
    leave(details);
}

TEST_F(DetailsTest, OpensByEnterAndDoubleClickAndSavesAllPages) {
    torvane().loadDrivesOnce();
    const ListView drives = torvane().driveList();
    bringToFront(program().mainWindow());
    drives.click(1);
    pressKey(program().mainWindow(), VK_RETURN);
    const Window details = program().awaitDialog();
    pressKey(details, VK_RETURN);
    EXPECT_TRUE(details.exists()) << "Enter, held a moment too long, closes nothing";
    EXPECT_EQ(valueOf(details, kDrivePage, "Serial number, printed"), "TN256-0042");
    EXPECT_EQ(valueOf(details, kHealthPage, "Temperature"), "41 Celsius");
    EXPECT_EQ(valueOf(details, kHealthPage, "Power Cycles"), "911");
    const fs::path file = program().folder() / "details.txt";
    fs::remove(file);
    press(details.child(kSave));
    chooseFile(program(), file);
    expectSoon([&] { EXPECT_THAT(torvane().log().back().message, StartsWith("Details SAVED as [")); });
    std::ifstream saved(file, std::ios::binary);
    EXPECT_THAT(std::string(std::istreambuf_iterator<char>(saved), {}), HasSubstr("--- Statistics ---"));
    leave(details);
    doubleClick(drives.window(), drives.checkBoxPlace(1));
    program().mainWindow().settle();
    expectNoBox();
    doubleClick(drives.window(), centre(drives.cellRect(1, 1)));
    leave(program().awaitDialog());
}

TEST_F(DetailsTest, WithoutADriveNothingOpens) {
    leaveProgramUsed();
    restart(layOutBench());
    torvane().command(kMenuDriveDetails);
    expectNoBox();
}

} // namespace
} // namespace torvane::driver
