// Tools and drives that never answer: the window goes on answering, and they can be left.

#include "tests/ui/driver/input.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace torvane::driver {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr int kLeave = 7500;
constexpr int kSetReadOnly = 32820; // in the drive list's context menu
constexpr int kBeginScan = 1026;
constexpr int kExitScan = 1025;
constexpr int kBitLockerList = 6006;
constexpr int kHexPane = 7410;
constexpr int kHexPosition = 7413;

/// PowerShell never ends, diskpart never tells of mounting, and drive 1 never reads its first sector.
class WaitingTest : public UiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        BenchFolder folder = pairBench();
        folder.bench(R"({"tools": {"powershell": {"delayMilliseconds": 600000},
            "diskpart": {"delayMilliseconds": 600000, "delayOnly": "MountStatusScript.txt"}}})");
        folder.drive("1-nvme", R"({"number": 1, "bus": "nvme", "size": "1 GiB", "road": "nvme-query",
            "backing": {"pattern": "sector-number"}, "identity": {"product": "SLOW", "serial": "S"},
            "faults": {"slow": [{"firstSector": 0, "milliseconds": 600000}]}})");
        return folder;
    }

    /// Expects that the window answers within a tenth of a second, again and again, and that its strip comes.
    static void expectAnswers(const Window& window) {
        constexpr UINT kLimit = 100;
        constexpr int kQuestions = 20;
        int inTime = 0;
        int late = 0;
        await("the strip is there", [&] {
            DWORD_PTR answer = 0;
            const bool answered =
                SendMessageTimeoutW(window.handle(), WM_NULL, 0, 0, SMTO_NORMAL, kLimit, &answer) != 0;
            ++(answered ? inTime : late);
            return strip(window).visible() && inTime + late >= kQuestions;
        });
        // Some may be late on a busy machine; a thread that waits would never answer.
        EXPECT_GT(inTime, late);
    }
    static Window strip(const Window& window) {
        for (const Window& child : window.children()) {
            if (child.className() == "TorvaneWaitingStrip") {
                return child;
            }
        }
        return {};
    }
    static void expectWaitingFor(const Window& window, const std::string& whom) {
        const std::vector<Window> parts = strip(window).children();
        ASSERT_THAT(parts, SizeIs(2));
        EXPECT_THAT(parts[0].text(), ::testing::StartsWith("Waiting for " + whom + ", "));
    }
    static void leave(const Window& window) {
        press(strip(window).child(kLeave));
        await("the strip has gone", [&] { return !strip(window).exists(); });
    }
    void awaitTerminated(const std::string& file) const {
        const std::string row = "PARSE_BuildDataFile: [" + file + "] TERMINATED before the tool was done";
        await("the tool was ended", [&] {
            const auto rows = torvane().logMessages("ERROR");
            return std::find(rows.begin(), rows.end(), row) != rows.end();
        });
    }
};

TEST_F(WaitingTest, AReportWhoseToolNeverEndsCanBeLeftAndAPageToo) {
    const Window window = program().mainWindow();
    torvane().loadDrivesOnce();
    torvane().driveList().click(0);
    torvane().press(kCreateReport);
    expectAnswers(window);
    expectWaitingFor(window, "PowerShell");
    // A disk command would reach whatever drive is selected when the wait is over.
    const ListView list = torvane().driveList();
    list.window().post(WM_CONTEXTMENU, reinterpret_cast<WPARAM>(list.window().handle()), static_cast<LPARAM>(-1));
    torvane().command(kMenuBitLocker);
    window.post(WM_COMMAND, kSetReadOnly);
    press(window.child(kExit));
    await("the strip has gone", [&] { return !strip(window).exists(); });
    const MessageBoxWindow box = program().awaitBox();
    EXPECT_EQ(box.caption(), "***** REPORT COMPLETED*****");
    EXPECT_EQ(FindWindowA("#32768", nullptr), nullptr) << "a menu is open";
    box.answer("OK");
    // What left the wait follows behind its box; the others were dropped.
    expectQuestion("***** Exiting Application *****", "You are about to EXIT TVN. Are you sure?", "No");
    expectNoBox();
    awaitTerminated("WorkFile.txt");

    torvane().press(kDataServices);
    expectAnswers(window);
    leave(window);
    expectNoBox();
}

TEST_F(WaitingTest, BitLockerCanBeLeftByItsExitButton) {
    torvane().loadDrivesOnce();
    torvane().driveList().click(0);
    torvane().command(kMenuBitLocker);
    const Window dialog = program().awaitDialog();
    press(dialog.child(kBeginScan));
    expectAnswers(dialog);
    expectWaitingFor(dialog, "PowerShell");
    EXPECT_EQ(ListView(dialog.child(kBitLockerList)).rowCount(), 1);
    press(dialog.child(kExitScan));
    await("the dialog has closed", [&] { return !dialog.exists(); });
    awaitTerminated("BITLOCKER.txt");
}

TEST_F(WaitingTest, ASectorThatNeverComesCanBeLeftAndTheNextOneIsShown) {
    torvane().loadDrivesOnce();
    torvane().driveList().click(1);
    torvane().press(kQuickDiskView);
    const Window viewer = program().awaitDialog();
    expectAnswers(viewer);
    expectWaitingFor(viewer, "the drive");
    EXPECT_THAT(viewer.child(kHexPane).text(), IsEmpty());
    leave(viewer);
    await("the place is told",
          [&] { return viewer.child(kHexPosition).text() == "Sector 0 of 0 to 2097151    byte offset 0x0"; });
    bringToFront(viewer);
    pressKey(viewer, VK_NEXT);
    await("the next sector is shown", [&] { return viewer.child(kHexPane).text().starts_with("4C 42 41 3D"); });
    pressKey(viewer, VK_PRIOR);
    expectAnswers(viewer);
    // Escape leaves the sector and the viewer.
    pressKey(viewer, VK_ESCAPE);
    await("the viewer has closed", [&] { return !viewer.exists(); });
}

TEST_F(WaitingTest, MountingAndExitLeaveADiskpartThatNeverEnds) {
    const Window window = program().mainWindow();
    expectEnd();
    torvane().press(kExit);
    expectQuestion("***** Exiting Application *****", "You are about to EXIT TVN. Are you sure?", "Yes");
    expectAnswers(window);
    expectWaitingFor(window, "diskpart");
    // Who presses Exit once more does not want to wait.
    press(window.child(kExit));
    const DWORD code = program().awaitEnd();
    EXPECT_LT(code, 0xC0000000U) << program().obituary();
}

/// Beside the program lie libraries and tools of names that belong to Windows.
class PlantedTest : public UiTest {
  protected:
    static constexpr const char* kLibraries[] = {
        "winmm.dll",     "comctl32.dll", "gdiplus.dll", "uxtheme.dll", "msimg32.dll", "version.dll",      "dwmapi.dll",
        "cryptbase.dll", "mpr.dll",      "bcrypt.dll",  "usp10.dll",   "oleacc.dll",  "windowscodecs.dll"};

    static Launch plantedRun() {
        BenchFolder bench = pairBench();
        Launch launch = freshRun("PlantedTest", bench);
        for (const char* const name : kLibraries) {
            std::filesystem::copy_file(TORVANE_PLANTED_LIBRARY, launch.program.parent_path() / name);
        }
        std::filesystem::copy_file(TORVANE_SMARTCTL_PROGRAM, launch.program.parent_path() / "powershell.exe");
        return launch;
    }
    static std::vector<std::string> loaded(const std::filesystem::path& folder) {
        std::vector<std::string> names;
        for (const auto& file : std::filesystem::directory_iterator(folder)) {
            if (file.path().extension() == ".loaded") {
                names.push_back(file.path().filename().string());
            }
        }
        return names;
    }
};

/// The libraries of a program's import table, in lower case (PE/COFF, "The .idata Section").
std::vector<std::string> importsOf(const std::filesystem::path& program) {
    const HMODULE module = LoadLibraryExW(program.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
    if (module == nullptr) {
        throw Failure("cannot be mapped: " + program.string());
    }
    const auto* const base = reinterpret_cast<const char*>(module);
    const auto* const header =
        reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + reinterpret_cast<const IMAGE_DOS_HEADER*>(base)->e_lfanew);
    const auto& table = header->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    std::vector<std::string> names;
    for (const auto* each = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + table.VirtualAddress);
         each->Name != 0; ++each) {
        std::string name(base + each->Name);
        CharLowerBuffA(name.data(), static_cast<DWORD>(name.size()));
        names.push_back(name);
    }
    FreeLibrary(module);
    return names;
}

// What the import table names is searched beside the program first, unless Windows holds it ready for every program
// (HKLM\SYSTEM\CurrentControlSet\Control\Session Manager\KnownDLLs).
TEST_F(PlantedTest, TheImportTableNamesOnlyLibrariesThatWindowsHoldsReady) {
    const auto imports = importsOf(packageFolder() / "Torvane.exe");
    EXPECT_THAT(imports, ::testing::IsSupersetOf({"kernel32.dll", "user32.dll"})) << "the check below could not fail";
    EXPECT_THAT(imports,
                ::testing::IsSubsetOf({"advapi32.dll", "comdlg32.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll",
                                       "ole32.dll", "shell32.dll", "shlwapi.dll", "user32.dll", "ws2_32.dll"}));
}

TEST_F(PlantedTest, WhatLiesBesideTheProgramIsNeitherLoadedNorStarted) {
    // The library does leave its mark, so the check below can fail.
    const Launch launch = plantedRun();
    const auto folder = launch.program.parent_path();
    std::filesystem::copy_file(TORVANE_PLANTED_LIBRARY, folder / "trial.dll");
    const HMODULE trial = LoadLibraryW((folder / "trial.dll").c_str());
    ASSERT_NE(trial, nullptr);
    FreeLibrary(trial);
    ASSERT_THAT(loaded(folder), SizeIs(1));
    std::filesystem::remove(folder / loaded(folder).front());

    Program program(launch);
    const TorvaneWindow window(program);
    window.loadDrives();
    window.driveList().click(0);
    window.press(kDataServices);
    await("the page is asked for", [&] { return !program.benchLog({"request=start", "Start-Process"}).empty(); });
    EXPECT_THAT(program.benchLog({"request=start", "Start-Process"}).front(),
                HasSubstr(R"(application="C:\\windows\\)"));
    EXPECT_THAT(window.logMessages("ERROR"),
                Contains(::testing::AllOf(HasSubstr("powershell.exe] does not belong to Windows and is not used"))));
    window.press(kShortTest);
    const Window test = program.awaitDialog();
    EXPECT_THAT(loaded(folder), IsEmpty());
    test.post(WM_NULL);
}

} // namespace
} // namespace torvane::driver
