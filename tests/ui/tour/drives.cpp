// The tour's steps that load drives and look at what is told of them.

#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/panel_sheet.h"
#include "tests/ui/tour/tour.h"

#include <cstdio>
#include <filesystem>

namespace torvane::driver {

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
    std::printf("    %-24s %s\n", "health-panels.png", "the health panel of every drive of the bench");
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
        keepPicture(tour, details, "05-details-" + std::to_string(page + 1), "the next page of the details");
    }
    closeDialog(tour);
}

void openTheLog(Tour& tour) {
    tour.torvane.setLogOpen(true);
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
            std::printf("    %-24s %s\n", "report.pdf", "the report itself");
            return;
        }
    }
    throw Failure("there is no report");
}

} // namespace torvane::driver
