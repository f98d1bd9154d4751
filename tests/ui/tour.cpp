// Shows Torvane to somebody who has no display at hand: does what a technician does first, and leaves a picture of each
// step.
//
//   torvane_tour <bench.exe> <bench folder> <Torvane.exe> <folder for the pictures>

#include "tests/ui/copy_dialog_window.h"
#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/driver/screen.h"
#include "tests/ui/driver/shell_dialogs.h"
#include "tests/ui/panel_sheet.h"
#include "tests/ui/torvane_window.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

namespace torvane::driver {
namespace {

/// What the steps work with.
struct Tour {
    const Program& program;
    TorvaneWindow torvane;
    std::string picturesFolder;
};

/// One step: what is done, and the picture of what it leads to.
struct Step {
    const char* picture;
    const char* description;
    void (*run)(Tour&);
    void (*finish)(Tour&) = nullptr; ///< after the picture
};

void readTheTutorial(Tour& tour) {
    tour.program.awaitDialog().awaitPainted();
}

void closeTheTutorial(Tour& tour) {
    constexpr int kContinue = 1021;
    const Window tutorial = tour.program.awaitDialog();
    press(tutorial.child(kContinue));
    await("the tutorial has closed", [&] { return !tutorial.exists(); });
}

void loadTheDrives(Tour& tour) {
    tour.torvane.loadDrives();
    tour.torvane.awaitProgressHidden();
}

void pickADrive(Tour& tour) {
    const ListView drives = tour.torvane.driveList();
    if (drives.rowCount() == 0) {
        throw Failure("the bench has no drives");
    }
    drives.click(0);
    drives.setTicked(0, true);
}

/// The health panel of every drive in one picture, beside the picture of the step.
void lookAtEveryDrive(Tour& tour) {
    healthPanelSheet(tour.torvane).save(tour.picturesFolder + "/health-panels.png");
    std::printf("    %-20s %s\n", "health-panels.png", "the health panel of every drive of the bench");
}

void openTheLog(Tour& tour) {
    tour.torvane.setLogOpen(true);
}

void lookAtTheDetails(Tour& tour) {
    tour.torvane.driveList().click(0);
    tour.torvane.command(kMenuDriveDetails);
    tour.program.awaitDialog().awaitPainted();
}

/// Each of its pages in a picture, beside the picture of the step.
void turnThePages(Tour& tour) {
    constexpr int kPages = 1372;
    const Window details = tour.program.awaitDialog();
    const Window list = details.child(kPages);
    for (WPARAM page = 1; page < static_cast<WPARAM>(list.send(LB_GETCOUNT)); ++page) {
        list.send(LB_SETCURSEL, page);
        details.send(WM_COMMAND, MAKEWPARAM(kPages, LBN_SELCHANGE), reinterpret_cast<LPARAM>(list.handle()));
        details.awaitPainted();
        const std::string name = "details-" + std::to_string(page + 1) + ".png";
        Picture::atRest(details.rect()).save(tour.picturesFolder + "/" + name);
        std::printf("    %-20s %s\n", name.c_str(), "the next page of the details");
    }
    details.post(WM_CLOSE);
    await("the details have closed", [&] { return !details.exists(); });
}

void createAReport(Tour& tour) {
    tour.torvane.driveList().click(0);
    tour.torvane.press(kCreateReport);
    tour.program.awaitBox().window().awaitPainted();
}

void keepTheReport(Tour& tour) {
    tour.program.awaitBox().answer("OK");
    for (const auto& file : std::filesystem::directory_iterator(tour.program.folder())) {
        if (file.path().extension() == ".pdf") {
            std::filesystem::copy_file(file.path(), std::filesystem::path(tour.picturesFolder) / "report.pdf");
            std::printf("    %-20s %s\n", "report.pdf", "the report itself");
            return;
        }
    }
    throw Failure("there is no report");
}

constexpr const char* kDriveToCopy = "Fennick F128 Pocket";
constexpr const char* kSpareDrive = "Fennick F128 Spare";

void tickOnly(const Tour& tour, const std::string& model) {
    const ListView drives = tour.torvane.driveList();
    for (int row = 0; row < drives.rowCount(); ++row) {
        drives.setTicked(row, drives.cell(row, 0) == model);
    }
}

// The copy dialog that is open lies under its box.
CopyDialogWindow copyDialogUnder(const MessageBoxWindow& box, const CopyDialogIds& ids) {
    return {Window(GetWindow(box.window().handle(), GW_OWNER)), ids};
}

void imageForensically(Tour& tour) {
    tickOnly(tour, kDriveToCopy);
    tour.torvane.press(kForensicImage);
    chooseFolder(tour.program, tour.picturesFolder);
    const CopyDialogWindow dialog(tour.program.awaitDialog(), kForensicIds);
    dialog.start();
    dialog.awaitStatus(" Image SUCCESSFULLY Completed");
    (void)tour.program.awaitBoxOver(dialog.window());
}

void verifyTheImage(Tour& tour) {
    const MessageBoxWindow question = tour.program.awaitBox();
    const CopyDialogWindow dialog = copyDialogUnder(question, kForensicIds);
    question.answer("Yes");
    const MessageBoxWindow verdict = tour.program.awaitBoxOver(dialog.window());
    if (verdict.text() != "CREATED File has been verified") {
        throw Failure("the image is not verified: " + verdict.text());
    }
}

void prepareAClone(Tour& tour) {
    const MessageBoxWindow verdict = tour.program.awaitBox();
    const CopyDialogWindow forensic = copyDialogUnder(verdict, kForensicIds);
    verdict.answer("OK");
    forensic.leave();
    tour.torvane.press(kClone);
    const CopyDialogWindow dialog(tour.program.awaitDialog(), kCloneIds);
    dialog.tickDestination(kSpareDrive);
    dialog.start();
    awaitWarning(tour.program).awaitPainted();
}

void cloneTheDrive(Tour& tour) {
    answerWarning(tour.program, "Yes");
    const CopyDialogWindow dialog(tour.program.awaitDialog(), kCloneIds);
    dialog.awaitStatus(" Image Completed");
    dialog.window().awaitPainted();
}

void lookAtTheOutcome(Tour& tour) {
    CopyDialogWindow(tour.program.awaitDialog(), kCloneIds).leave();
}

// A later command of the program joins the tour by one line here.
constexpr Step kSteps[] = {
    {"0-tutorial.png", "the tutorial greets a new user, until it is told not to", readTheTutorial},
    {"1-start.png", "Torvane has started; no drive is known yet", closeTheTutorial},
    {"2-drives.png", "Load Drives has listed the drives of the bench", loadTheDrives},
    {"3-active-drive.png", "a click has made the first drive the active one; its check box is ticked", pickADrive},
    {"4-another-drive.png", "a click on another drive brings up its health panel", lookAtEveryDrive},
    {"4-details.png", "Enter on its row tells all that is known of the drive", lookAtTheDetails, turnThePages},
    {"5-log.png", "the log panel tells what the scan met", openTheLog},
    {"6-report.png", "Create Report has written the first drive's report and had it opened", createAReport,
     keepTheReport},
    {"7-forensic-image.png", "a forensic image of a drive, with its hash file, both in this folder", imageForensically},
    {"8-verified.png", "the image was read again and has the same hash", verifyTheImage},
    {"9-warning.png", "before a drive is overwritten its volumes are named", prepareAClone},
    {"10-clone.png", "the drive has been cloned onto another one", cloneTheDrive},
    {"11-copied.png", "the drive list tells how the copies ended", lookAtTheOutcome},
};

void takePicture(const Tour& tour, const Step& step) {
    const Window& window = tour.torvane.window();
    parkMouse();
    window.awaitPainted();
    RECT shown = window.rect();
    if (const auto dialog = tour.program.dialog()) {
        const RECT front = dialog->rect();
        UnionRect(&shown, &shown, &front);
    }
    Picture::atRest(shown).save(tour.picturesFolder + "/" + step.picture);
    std::printf("    %-20s %s\n", step.picture, step.description);
    std::fflush(stdout);
}

void takeTour(const Launch& launch, const std::string& picturesFolder) {
    prepareScreen();
    const Program program(launch);
    if (!program.mainWindow().exists()) {
        throw Failure("no main window: " + program.obituary() + "\n" + describeWindows(program.processId()));
    }
    Tour tour{program, TorvaneWindow(program), picturesFolder};
    for (const Step& step : kSteps) {
        try {
            step.run(tour);
            takePicture(tour, step);
            if (step.finish != nullptr) {
                step.finish(tour);
            }
        } catch (const Failure&) {
            Picture::ofScreen(wholeScreen()).save(picturesFolder + "/failed.png");
            throw;
        }
    }
}

} // namespace
} // namespace torvane::driver

int main(int argc, char** argv) {
    if (argc != 5) {
        std::fprintf(stderr,
                     "usage: torvane_tour <bench.exe> <bench folder> <Torvane.exe> <folder for the pictures>\n");
        return 2;
    }
    try {
        torvane::driver::takeTour({argv[1], argv[2], argv[3], {}}, argv[4]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
