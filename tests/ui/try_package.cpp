// Works with an unpacked package as somebody does who has just downloaded it: starts it, lists the drives, opens the
// manual, makes a portable drive from it and works with that.
//
//   torvane_try_package <bench.exe> <bench folder> <folder>
//
// In the folder lie one with the package and an empty one, which becomes the portable drive. Their names are read from
// the disk, because those may have letters in which a command line does not reach this program.

#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/driver/screen.h"
#include "tests/ui/driver/shell_dialogs.h"
#include "tests/ui/torvane_window.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>

namespace torvane::driver {
namespace fs = std::filesystem;
namespace {

constexpr const char* kProgram = "Torvane.exe";

void expect(bool holds, const std::string& what) {
    if (!holds) {
        throw Failure("not so: " + what);
    }
    std::printf("    %s\n", what.c_str());
    std::fflush(stdout);
}

/// The only folder in `parent` in which the program lies, or in which it does not.
fs::path folderIn(const fs::path& parent, bool withProgram) {
    for (const auto& entry : fs::directory_iterator(parent)) {
        if (entry.is_directory() && fs::exists(entry.path() / kProgram) == withProgram) {
            return entry.path();
        }
    }
    throw Failure("a folder is missing in " + parent.string());
}

void closeTheTutorial(const Program& program) {
    constexpr int kContinue = 1021;
    const Window tutorial = program.awaitDialog();
    press(tutorial.child(kContinue));
    await("the tutorial has closed", [&] { return !tutorial.exists(); });
}

void expectStarted(const Program& program) {
    expect(program.mainWindow().exists(), "the window shows");
    closeTheTutorial(program);
    for (const char* const name : {"Message.db", "Config.db", "BITLOCKER.db"}) {
        expect(fs::is_regular_file(program.folder() / name), std::string(name) + " is there");
    }
}

/// The one that lies in the package is the one that the program carries: opening it, it has nothing to write.
void expectManualOpens(const Program& program) {
    constexpr const char* kFile = "Torvane-manual.html";
    constexpr WPARAM kManual = 96; // in the system menu
    const fs::path manual = program.folder() / kFile;
    const auto written = fs::last_write_time(manual);
    program.mainWindow().post(WM_SYSCOMMAND, kManual);
    await("the manual has been opened", [&] {
        return !program.benchLog({"request=powershell", std::string("opened=\"") + kFile + "\""}).empty();
    });
    expect(fs::last_write_time(manual) == written, "the manual opens as it came");
}

int expectDrivesListed(const Program& program) {
    const TorvaneWindow torvane(program);
    torvane.loadDrives();
    const int drives = torvane.driveList().rowCount();
    expect(drives > 0, std::to_string(drives) + " drives are listed");
    expect(fs::file_size(program.folder() / "PHYS0.txt") > 0, "smartctl has reported of the first one");
    return drives;
}

void makePortableDrive(const Program& program, const fs::path& stick) {
    TorvaneWindow(program).command(kMenuPortable);
    chooseFolder(program, stick);
    const MessageBoxWindow box = program.awaitBox();
    expect(box.caption() == "DISK CREATED", "the portable drive is made: " + box.caption());
    box.answer("OK");
    expect(!fs::exists(stick / "defaults"), "it carries its files themselves");
}

void tryPackage(const fs::path& launcher, const fs::path& bench, const fs::path& parent) {
    const fs::path unpacked = folderIn(parent, true);
    const fs::path stick = folderIn(parent, false);
    int drives = 0;
    {
        const Program program({launcher, bench, unpacked / kProgram, {}});
        expectStarted(program);
        drives = expectDrivesListed(program);
        expectManualOpens(program);
        makePortableDrive(program, stick);
    }
    const Program copy({launcher, bench, stick / kProgram, {}});
    expectStarted(copy);
    expect(expectDrivesListed(copy) == drives, "the portable drive's Torvane lists as many");
}

void leavePicture(const fs::path& parent) {
    Picture::ofScreen(wholeScreen()).save((parent / "failed.png").string());
}

} // namespace
} // namespace torvane::driver

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: torvane_try_package <bench.exe> <bench folder> <folder>\n");
        return 2;
    }
    try {
        torvane::driver::prepareScreen();
        torvane::driver::tryPackage(argv[1], argv[2], argv[3]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        torvane::driver::leavePicture(argv[3]);
        return 1;
    }
    return 0;
}
