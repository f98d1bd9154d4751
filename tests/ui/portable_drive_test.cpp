#include "tests/ui/driver/input.h"
#include "tests/ui/driver/shell_dialogs.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

#include <array>
#include <fstream>

namespace torvane::driver {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace fs = std::filesystem;

/// What is copied, in its order; written down once more, so that a change is noticed.
constexpr std::array<const char*, 35> kFiles = {
    "Torvane.exe",
    "smartctl.exe",
    "Suggestions.txt",
    "Message.db",
    "Config.db",
    "SSDAttribute.db",
    "BITLOCKER.db",
    "engine-check-blue.png",
    "engine-check-green.png",
    "engine-check-red.png",
    "engine-check-white.png",
    "engine-check-yellow.png",
    "engine-check-nosmart.png",
    "passfail-image.png",
    "passfail-gauge.png",
    "sw-gauge-poh-small.png",
    "sw-gauge-small.png",
    "report-gray-32.png",
    "report-green-32.png",
    "report-blue-32.png",
    "report-yellow-32.png",
    "report-red-32.png",
    "trophy.png",
    "court-house.png",
    "race-car.png",
    "police-1-car.png",
    "police-2-car.png",
    "race-track.png",
    "reverse-race-track.png",
    "explosion-a.png",
    "explosion-b.png",
    "explosion-c.png",
    "explosion-d.png",
    "passfail-gauge.png",
    "license.txt",
};

std::string native(fs::path path) {
    return path.make_preferred().string();
}

TEST(ShippedFilesTest, EveryFileOfThePortableDriveShips) {
    for (const char* const name : kFiles) {
        EXPECT_TRUE(fs::is_regular_file(packageFolder() / name)) << name;
    }
}

TEST(ShippedFilesTest, DatabasesThatGrowBeginEmpty) {
    EXPECT_EQ(fs::file_size(packageFolder() / "BITLOCKER.db"), 0U);
    EXPECT_EQ(fs::file_size(packageFolder() / "SSDAttribute.db"), 0U);
}

TEST(ShippedFilesTest, TheLicenceNamesEveryPartAndWhereSmartctlsSourceIs) {
    const std::string text = readFile(packageFolder() / "license.txt");
    for (const char* const part :
         {"TORVANE\r\n", "1. smartctl\r\n", "GNU GENERAL PUBLIC LICENSE\r\n", "END OF TERMS AND CONDITIONS\r\n",
          "https://www.smartmontools.org", "smartmontools_7.4.orig.tar.xz", "2. libharu\r\n", "Takeshi Kanno",
          "3. libpng\r\n", "The PNG Reference Library Authors", "4. zlib\r\n", "Jean-loup Gailly and Mark Adler",
          "5. mingw-w64 run time and winpthreads\r\n", "Lockless Inc.", "6. GCC run time\r\n",
          "Grant of Additional Permission"}) {
        EXPECT_THAT(text, HasSubstr(part));
    }
    EXPECT_TRUE(text.ends_with("requirements of the license of GCC.\r\n"));
}

TEST(ShippedFilesTest, TextsEndTheirLinesAsWindowsDoes) {
    for (const char* const name : {"license.txt", "Suggestions.txt"}) {
        const std::string text = readFile(packageFolder() / name);
        ASSERT_FALSE(text.empty()) << name;
        for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 1)) {
            ASSERT_TRUE(at > 0 && text[at - 1] == '\r') << name << " at byte " << at;
        }
    }
}

class PortableDriveTest : public UiTest {
  protected:
    void SetUp() override {
        UiTest::SetUp();
        fs::create_directories(stick());
        rowsBefore_ = torvane().logList().rowCount();
    }

    [[nodiscard]] fs::path stick() const { return program().folder().parent_path() / "stick"; }
    /// Chooses the command's item in the menu.
    void chooseCommand() const {
        const Window window = program().mainWindow();
        bringToFront(window);
        parkMouse();
        // The bar's items are the space, the popup and Help; the command is the popup's second one.
        for (const int key : {VK_F10, VK_RIGHT, VK_RETURN, VK_DOWN, VK_RETURN}) {
            pressKey(window, static_cast<WORD>(key));
        }
    }
    void copyTo(const fs::path& folder) const {
        torvane().command(kMenuPortable);
        chooseFolder(program(), folder);
    }
    void expectDone() const { expectBox("DISK CREATED", "Technicians Disk Created", BoxIcon::kNone, "OK"); }
    /// What the log has got since the test began.
    [[nodiscard]] std::vector<std::string> rows() const { return torvane().logRowsFrom(rowsBefore_); }
    void awaitError() const {
        await("the copy has failed", [&] { return !rows().empty() && rows().back().starts_with("ERROR"); });
    }

  private:
    int rowsBefore_ = 0;
};

TEST_F(PortableDriveTest, AFreshInstallCopiesEverythingInOrderOverWhatIsThere) {
    std::ofstream(stick() / "license.txt") << "an older one";
    chooseCommand();
    chooseFolder(program(), stick());
    expectDone();
    std::vector<std::string> expected;
    for (const char* const name : kFiles) {
        expected.push_back("SUCCESS: File [" + native(stick() / name) + "] copied");
        EXPECT_EQ(readFile(stick() / name), readFile(program().folder() / name)) << name;
    }
    EXPECT_EQ(rows(), expected);
    expectNoBox();
}

TEST_F(PortableDriveTest, ProgramAndCopyWorkInTheirOwnFolders) {
    leaveProgramUsed();
    copyTo(stick());
    expectDone();
    torvane().loadDrives();
    EXPECT_TRUE(fs::exists(program().folder() / "PHYS0.txt"));
    EXPECT_FALSE(fs::exists(stick() / "PHYS0.txt"));

    const fs::path bench = program().folder().parent_path() / "second-bench";
    pairBench().writeTo(bench);
    const Program copy({workbenchFolder() / "bench.exe", bench, stick() / "Torvane.exe", {}});
    const Window tutorial = copy.awaitDialog();
    press(tutorial.child(1021));
    await("the copy's window takes input", [&] { return copy.mainWindow().enabled(); });
    const TorvaneWindow window(copy);
    window.loadDrives();
    ASSERT_EQ(window.driveList().rowCount(), 2);
    EXPECT_EQ(window.driveList().cell(0, 0), "HALDANE HD5000");
    EXPECT_FALSE(copy.benchLog({"program=smartctl.exe"}).empty()) << "its own smartctl.exe";
    EXPECT_TRUE(fs::exists(stick() / "PHYS0.txt")) << "it works in its own folder";
    window.driveList().click(0);
    window.window().awaitPainted();
    EXPECT_TRUE(copy.running()) << copy.obituary();
}

TEST_F(PortableDriveTest, TheProgramsOwnFolderIsRefusedByItsRunningProgram) {
    const std::string before = readFile(program().folder() / "Torvane.exe");
    copyTo(program().folder());
    awaitError();
    const std::string failure =
        "Could not create [" + native(program().folder() / "Torvane.exe") + "] file. Disk Creation Terminated.";
    expectStopBox("***** DISK NOT CREATED *****", failure + "\nThe files that were copied before it stay.");
    EXPECT_THAT(rows(), ElementsAre("ERROR: " + failure));
    EXPECT_EQ(readFile(program().folder() / "Torvane.exe"), before);
    expectNoBox();
}

} // namespace
} // namespace torvane::driver
