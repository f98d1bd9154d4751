#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/expect_soon.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

#include <commctrl.h>

#include <filesystem>

namespace torvane::driver {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr WORD kSetKey = 'S';
constexpr WORD kClearKey = 'C';
constexpr WORD kCleanKey = 'D';

constexpr int kWarningText = 3301;
constexpr int kWarningDrive = 3302;
constexpr int kWarningDetails = 3303;
constexpr int kWarningList = 3400;

constexpr const char* kWorking = "***** Working *****";
constexpr const char* kSetQuestion = "***** SET READ-ONLY *****";
constexpr const char* kClearQuestion = "***** CLEAR READ-ONLY *****";
constexpr const char* kDiskPart = "request=diskpart";

/// A test that changes a disk leaves the program used: what diskpart changes stays on the bench.
class DiskMenuTest : public UiTest {
  protected:
    void loadOnce() const {
        program().hurry();
        torvane().loadDrivesOnce();
    }

    [[nodiscard]] BenchFolder layOutBench() const override {
        BenchFolder folder;
        folder.bench(R"({"tools": {"diskpart": {"delayMilliseconds": 600000}}})");
        folder.drive("0", R"({"number": 0, "bus": "nvme", "size": "256 GiB", "road": "nvme-query",
            "identity": {"product": "Tarn N256", "serial": "TN256-0042"},
            "volumes": [{"letter": "C", "extents": [{"offset": "1 MiB", "length": "100 GiB"}]}]})");
        folder.drive("1", R"({"number": 1, "bus": "nvme", "size": "16 MiB", "road": "nvme-query",
            "identity": {"product": "Tarn N16", "serial": "TN16-1"},
            "volumes": [{"letter": "K", "label": "Rescue", "serial": "1A2B-3C4D",
                         "extents": [{"offset": "1 MiB", "length": "4 MiB"}]},
                        {"letter": "L", "serial": "0000-0001", "extents": [{"offset": "6 MiB", "length": "4 MiB"}]}]})");
        folder.drive("2", R"({"number": 2, "bus": "nvme", "size": "16 MiB", "road": "nvme-query", "readOnly": true,
            "identity": {"product": "Tarn N16", "serial": "TN16-2"}})");
        return folder;
    }

    [[nodiscard]] static bool menuIsOpen() { return menuWindow().visible(); }
    [[nodiscard]] static Window menuWindow() { return Window(FindWindowA("#32768", nullptr)); }

    /// Right-clicks the drive's row and waits for the menu.
    void openMenu(int row) const {
        bringToFront(program().mainWindow());
        const ListView list = torvane().driveList();
        clickAt(list.window(), centre(list.cellRect(row, 1)), MouseButton::kRight);
        await("the menu opens", [] { return menuIsOpen(); });
    }
    void choose(WORD key) const {
        pressKey(program().mainWindow(), key);
        await("the menu closes", [] { return !menuIsOpen(); });
    }
    void chooseFor(int row, WORD key) const {
        openMenu(row);
        choose(key);
    }

    /// Opens the menu and chooses as soon as the change before has ended, whose thread outlives its box by a moment.
    template <typename Open>
    void chooseAfterAChange(Open&& open, WORD key) const {
        await("the change before has ended", [&] {
            open();
            choose(key);
            const bool refused = program().awaitDialog().text() == kWorking;
            if (refused) {
                program().awaitBox().answer("OK");
            }
            return !refused;
        });
    }
    /// Likewise; until then the button does nothing.
    void loadAfterAChange() const {
        const int drives = torvane().driveList().rowCount();
        await("the drive list is emptied", [&] {
            torvane().press(kLoadDrives);
            return torvane().driveList().rowCount() == 0;
        });
        await(
            "the drives are listed again", [&] { return torvane().driveList().rowCount() == drives; },
            std::chrono::seconds(60));
        torvane().awaitLoaded();
    }

    /// Answers the question whether the attribute of disk 1 or 2 is to be changed.
    void answerQuestion(const std::string& caption, int disk, const std::string& answer) const {
        const MessageBoxWindow box = program().awaitBox();
        EXPECT_EQ(box.caption(), caption);
        const std::string number = std::to_string(disk);
        EXPECT_THAT(box.text(),
                    ::testing::StartsWith("Disk 00" + number + " - Tarn N16 TN16-" + number + ", 0.02 GB. "));
        EXPECT_EQ(box.buttons(), (std::vector<std::string>{"Yes", "No"}));
        box.answer(answer);
    }

    [[nodiscard]] std::string status(int row) const { return torvane().driveList().cell(row, 5); }

    void expectOutcome(const std::string& caption, const std::string& text, BoxIcon icon) const {
        expectBox(caption, text, icon, "OK");
        expectNoBox();
    }

    /// What diskpart was told to change.
    [[nodiscard]] std::vector<std::string> changes() const {
        std::vector<std::string> lines = program().benchLog({kDiskPart, "script-line=\"clean"});
        for (const std::string& line : program().benchLog({kDiskPart, "script-line=\"attributes disk "})) {
            lines.push_back(line);
        }
        return lines;
    }
};

TEST_F(DiskMenuTest, WithoutARowThereIsNoMenuAndNoCommand) {
    if (torvane().driveList().rowCount() != 0) {
        restart(layOutBench());
    }
    bringToFront(program().mainWindow());
    const Window list = torvane().driveList().window();
    const RECT area = list.clientRect();
    clickAt(list, {area.left + 100, area.bottom - 8}, MouseButton::kRight);
    EXPECT_FALSE(menuIsOpen());
    pressKey(program().mainWindow(), VK_APPS);
    torvane().window().settle();
    EXPECT_FALSE(menuIsOpen());
    expectNoBox();
    // The rows come last in a scan, so the commands are sent as the menu would while the loader works.
    program().takeTime();
    torvane().startLoading();
    for (const int id : {32820, 32821, 32822}) {
        torvane().command(id);
        expectNoBox();
    }
    program().hurry();
    torvane().awaitLoaded();
    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(DiskMenuTest, OpensOnARightClickAndMakesTheDriveActive) {
    loadOnce();
    openMenu(1);
    EXPECT_TRUE(torvane().driveList().selected(1));
    pressKey(program().mainWindow(), VK_ESCAPE);
    await("the menu closes", [] { return !menuIsOpen(); });
    EXPECT_TRUE(torvane().driveList().selected(1));
    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(DiskMenuTest, WarningNamesTheDriveAndItsVolumes) {
    loadOnce();
    chooseFor(1, kCleanKey);
    const Window warning = program().awaitDialog();
    EXPECT_EQ(warning.text(), "Clean Disk");
    EXPECT_EQ(warning.child(kWarningText).text(), "WARNING - All Data on Drive List will be destroyed");
    EXPECT_EQ(toText(warning.child(kWarningText).rectIn(warning)), toText(RECT{10, 8, 460, 28}));
    EXPECT_EQ(warning.child(kWarningDrive).text(), "001 - Tarn N16 TN16-1");
    EXPECT_EQ(warning.child(kWarningDetails).text(), "Drive number 1, 0.02 GB (16777216 bytes)");
    const ListView list(warning.child(kWarningList));
    EXPECT_EQ(toText(list.window().rectIn(warning)), toText(RECT{10, 30, 460, 204}));
    ASSERT_EQ(list.columnCount(), 3);
    EXPECT_EQ(list.heading(0), "Type");
    EXPECT_EQ(list.heading(1), "Model/Volume");
    EXPECT_EQ(list.heading(2), "Relation");
    EXPECT_EQ(list.columnWidth(0), 100);
    EXPECT_EQ(list.columnWidth(1), 230);
    EXPECT_EQ(list.columnWidth(2), 120);
    EXPECT_EQ(list.extendedStyle(), static_cast<DWORD>(LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES));
    EXPECT_EQ(list.background(), RGB(136, 196, 236));
    EXPECT_EQ(list.window().style() & (WS_HSCROLL | WS_VSCROLL), 0) << "a scroll bar takes room from three rows";
    ASSERT_EQ(list.rowCount(), 3);
    EXPECT_THAT(list.row(0), ElementsAre("PHYSICAL", "001 - Tarn N16 TN16-1", "DESTINATION"));
    EXPECT_THAT(list.row(1), ElementsAre("VOLUME", "K:\\ - Rescue - 1A2B-3C4D", "RELATED VOLUME"));
    EXPECT_THAT(list.row(2), ElementsAre("VOLUME", "L:\\ -  - 0000-0001", "RELATED VOLUME"));
    warning.awaitPainted();
    expectSoon(
        [&] { EXPECT_EQ(toText(Picture::ofScreen(warning.clientRect()).at(4, 4)), toText(RGB(218, 223, 234))); });
    press(warning.child(IDNO));
    expectNoBox();
    EXPECT_THAT(changes(), IsEmpty());
    EXPECT_EQ(status(1), "Idle");
}

TEST_F(DiskMenuTest, EnterAndEscapeAnswerTheWarningWithNo) {
    loadOnce();
    for (const WORD key : {WORD{VK_RETURN}, WORD{VK_ESCAPE}}) {
        chooseFor(1, kCleanKey);
        const Window warning = program().awaitDialog();
        EXPECT_EQ(focused(warning).id(), IDNO);
        pressKey(warning, key);
        await("the warning is gone", [&] { return !warning.exists(); });
        expectNoBox();
    }
    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(DiskMenuTest, SystemDriveIsRefused) {
    loadOnce();
    chooseFor(0, kCleanKey);
    expectOutcome("***** SYSTEM DRIVE *****", "The drive that holds Windows cannot be cleaned", BoxIcon::kStop);
    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(DiskMenuTest, SetsAndClearsTheAttributeByMouseMenuKeyAndShiftF10) {
    leaveProgramUsed();
    loadOnce();
    chooseFor(1, kSetKey);
    EXPECT_EQ(focused(program().awaitDialog()).id(), IDNO);
    answerQuestion(kSetQuestion, 1, "No");
    expectNoBox();
    EXPECT_THAT(changes(), IsEmpty());
    chooseFor(1, kSetKey);
    answerQuestion(kSetQuestion, 1, "Yes");
    expectOutcome("****** READ-ONLY SET ******", "Disk 001 - Tarn N16 TN16-1 is now READ-ONLY", BoxIcon::kNone);
    EXPECT_EQ(status(1), "COMPLETED read-only set");
    EXPECT_TRUE(std::filesystem::exists(program().folder() / "Enable RO Results DISK [Tarn N16] - [TN16-1].txt"));

    const auto openByMenuKey = [this] {
        bringToFront(program().mainWindow());
        pressKey(program().mainWindow(), VK_APPS);
        await("the menu opens", [] { return menuIsOpen(); });
        EXPECT_NEAR(menuWindow().rect().top, torvane().driveList().cellRect(1, 0).bottom, 4);
    };
    chooseAfterAChange(openByMenuKey, kClearKey);
    answerQuestion(kClearQuestion, 1, "Yes");
    expectOutcome("****** READ-ONLY CLEARED ******", "Disk 001 - Tarn N16 TN16-1 is now WRITABLE", BoxIcon::kNone);
    EXPECT_EQ(status(1), "COMPLETED read-only cleared");
    EXPECT_THAT(changes(),
                ElementsAre(HasSubstr("attributes disk set readonly"), HasSubstr("attributes disk clear readonly")));
    EXPECT_EQ(status(0), "Idle");
    EXPECT_EQ(status(2), "Idle");

    torvane().driveList().click(2);
    const auto openByShiftF10 = [this] {
        bringToFront(program().mainWindow());
        pressKey(program().mainWindow(), VK_F10, VK_SHIFT);
        await("the menu opens", [] { return menuIsOpen(); });
    };
    chooseAfterAChange(openByShiftF10, kClearKey);
    answerQuestion(kClearQuestion, 2, "Yes");
    expectOutcome("****** READ-ONLY CLEARED ******", "Disk 002 - Tarn N16 TN16-2 is now WRITABLE", BoxIcon::kNone);
}

TEST_F(DiskMenuTest, ConfirmedCleaningIsDoneOrNotAndSaidSo) {
    leaveProgramUsed();
    loadOnce();
    chooseFor(2, kCleanKey);
    press(program().awaitDialog().child(IDYES));
    expectOutcome("****** DISK NOT CLEANED ******", "Disk 002 - Tarn N16 TN16-2 has NOT been CLEANED", BoxIcon::kStop);
    EXPECT_EQ(status(2), "BAD disk not cleaned") << "it is read-only";

    chooseAfterAChange([this] { openMenu(1); }, kCleanKey);
    press(program().awaitDialog().child(IDYES));
    expectOutcome("****** DISK CLEANED ******", "Disk 001 - Tarn N16 TN16-1 has been CLEANED", BoxIcon::kNone);
    EXPECT_EQ(status(1), "COMPLETED disk cleaned");
    EXPECT_THAT(changes(), ElementsAre(HasSubstr("script-line=\"clean"), HasSubstr("script-line=\"clean")));
    EXPECT_THAT(program().benchLog({kDiskPart, "script-line=\"select disk 1"}), ::testing::Not(IsEmpty()));
    loadAfterAChange();
    chooseFor(1, kCleanKey);
    const Window warning = program().awaitDialog();
    EXPECT_EQ(ListView(warning.child(kWarningList)).rowCount(), 1) << "the volumes are gone";
    press(warning.child(IDNO));
}

TEST_F(DiskMenuTest, WindowStaysUsableWhileDiskPartWorks) {
    leaveProgramUsed();
    loadOnce();
    program().takeTime();
    chooseFor(1, kSetKey);
    answerQuestion(kSetQuestion, 1, "Yes");
    await("diskpart is at work", [&] { return status(1) == "Setting read-only"; });
    // A second change meanwhile is refused, and so is a scan.
    chooseFor(2, kClearKey);
    expectStopBox(kWorking, "A Job is Working");
    torvane().press(kLoadDrives);
    EXPECT_EQ(torvane().driveList().rowCount(), 3);
    program().hurry();
    const MessageBoxWindow box = program().awaitBox();
    EXPECT_EQ(box.caption(), "****** READ-ONLY SET ******");
    box.answer("OK");
    EXPECT_THAT(changes(), ElementsAre(HasSubstr("attributes disk set readonly")));
}

TEST_F(DiskMenuTest, TheDriveThatTheProgramRunsFromIsNeverCleaned) {
    leaveProgramUsed();
    restart(BenchFolder().drive("1", R"({"number": 1, "bus": "nvme", "size": "64 MiB", "road": "nvme-query",
        "identity": {"product": "Tarn N64", "serial": "TN64-1"},
        "volumes": [{"letter": "Z", "extents": [{"offset": "1 MiB", "length": "4 MiB"}]}]})"));
    torvane().loadDrives();
    chooseFor(0, kCleanKey);
    expectOutcome("***** PROTECTED DRIVE *****",
                  "Drive 1 holds the folder that this program runs from. It is never changed. Nothing was written. "
                  "Choose another drive",
                  BoxIcon::kStop);
    EXPECT_THAT(changes(), IsEmpty());
    EXPECT_EQ(status(0), "Idle");
}

TEST_F(DiskMenuTest, LongListScrollsUnderTheSameColumns) {
    leaveProgramUsed();
    std::string volumes;
    for (char letter = 'D'; letter <= 'Y'; ++letter) { // the program's own folder is on Z:
        volumes += std::string(volumes.empty() ? "" : ", ") + R"({"letter": ")" + letter +
                   R"(", "label": "a label of as many characters as", "extents": [{"offset": ")" +
                   std::to_string(letter - 'C') + R"( MiB", "length": "512 KiB"}]})";
    }
    restart(
        BenchFolder().drive("0", R"({"number": 0, "bus": "nvme", "size": "64 MiB", "road": "nvme-query", "identity": {
        "product": "A Drive With A Name Of Just Forty Letters", "serial": "AND-A-SERIAL-NUMBER-"}, "volumes": [)" +
                                     volumes + "]}"));
    torvane().loadDrives();
    chooseFor(0, kCleanKey);
    const Window warning = program().awaitDialog();
    const ListView list(warning.child(kWarningList));
    EXPECT_EQ(list.rowCount(), 23);
    EXPECT_NE(list.window().style() & WS_VSCROLL, 0);
    EXPECT_EQ(list.window().style() & WS_HSCROLL, 0);
    EXPECT_THAT(warning.child(kWarningDrive).text(), HasSubstr("AND-A-SERIAL-NUMBER-"));
    warning.awaitPainted();
    press(warning.child(IDNO));
}

} // namespace
} // namespace torvane::driver
