// The tour's steps that copy drives, and look at the copies.

#include "tests/ui/driver/input.h"
#include "tests/ui/driver/shell_dialogs.h"
#include "tests/ui/tour/tour.h"

#include <filesystem>

namespace torvane::driver {
namespace {

namespace fs = std::filesystem;

constexpr const char* kDriveToCopy = "Fennick F128 Pocket";
constexpr const char* kSpareDrive = "Fennick F128 Spare";
constexpr const char* kFailingDrive = "Tidewell TW1G Laptop Disk";

void tickOnly(const Tour& tour, const std::string& model) {
    const ListView drives = tour.torvane.driveList();
    for (int row = 0; row < drives.rowCount(); ++row) {
        drives.setTicked(row, drives.cell(row, 0) == model);
    }
}

/// The image that the forensic step has made.
fs::path madeImage(const Tour& tour) {
    for (const auto& file : fs::directory_iterator(tour.picturesFolder)) {
        if (file.path().extension() == ".img") {
            return file.path();
        }
    }
    throw Failure("there is no image");
}

} // namespace

void nameTheCase(Tour& tour) {
    constexpr int kCase = 1301;
    tickOnly(tour, kDriveToCopy);
    tour.torvane.press(kForensicImage);
    chooseFolder(tour.program, tour.picturesFolder);
    tour.copy.emplace(tour.program.awaitDialog(), kForensicIds);
    tour.copy->window().post(WM_COMMAND, kCase);
    awaitDialogNamed(tour, "Case Information").awaitPainted();
}

void imageForensically(Tour& tour) {
    tour.copy->start();
    tour.copy->awaitStatus(" Image SUCCESSFULLY Completed");
    (void)tour.program.awaitBoxOver(tour.copy->window());
}

void verifyTheImage(Tour& tour) {
    tour.program.awaitBox().answer("Yes");
    const MessageBoxWindow verdict = tour.program.awaitBoxOver(tour.copy->window());
    if (verdict.text() != "CREATED File has been verified") {
        throw Failure("the image is not verified: " + verdict.text());
    }
}

void verifyTheImageAgain(Tour& tour) {
    tour.program.awaitBox().answer("OK");
    tour.copy->leave();
    tour.torvane.window().post(WM_SYSCOMMAND, kVerifyImage);
    chooseFile(tour.program, madeImage(tour));
    tour.copy.emplace(tour.program.awaitDialog(), kVerifyImageIds);
    tour.copy->start();
    (void)tour.program.awaitBoxOver(tour.copy->window());
}

void leaveTheVerification(Tour& tour) {
    tour.program.awaitBox().answer("OK");
    leaveTheCopy(tour);
}

void prepareAClone(Tour& tour) {
    tour.torvane.press(kClone);
    tour.copy.emplace(tour.program.awaitDialog(), kCloneIds);
    tour.copy->tickDestination(kSpareDrive);
    tour.copy->start();
    awaitWarning(tour.program).awaitPainted();
}

void cloneTheDrive(Tour& tour) {
    answerWarning(tour.program, "Yes");
    tour.copy->awaitStatus(" Image Completed");
}

void rescueADrive(Tour& tour) {
    constexpr int kNewImage = 1348;
    tickOnly(tour, kFailingDrive);
    tour.torvane.window().post(WM_SYSCOMMAND, kRescueTicked);
    tour.copy.emplace(tour.program.awaitDialog(), kRescueIds);
    const fs::path folder = tour.program.folder() / "Rescued";
    fs::create_directories(folder);
    press(tour.copy->window().child(kNewImage));
    chooseFolder(tour.program, folder);
    tour.program.hurry(); // a part of the drive answers slowly
    tour.copy->start();
    tour.copy->awaitStatus(" Rescue Completed, not everything could be read");
}

void leaveTheRescue(Tour& tour) {
    tour.program.takeTime();
    leaveTheCopy(tour);
}

void imageADrive(Tour& tour) {
    tickOnly(tour, kDriveToCopy);
    tour.torvane.press(kDriveToImage);
    const fs::path folder = tour.program.folder() / "Images";
    fs::create_directories(folder);
    chooseFolder(tour.program, folder);
    tour.copy.emplace(tour.program.awaitDialog(), kImageIds);
    tour.copy->start();
    tour.copy->awaitStatus(" Image  SUCCESSFULLY Completed");
}

void prepareAnImageToDrive(Tour& tour) {
    tour.torvane.press(kImageToDrive);
    chooseFile(tour.program, madeImage(tour));
    tour.copy.emplace(tour.program.awaitDialog(), kImageToDriveIds);
    tour.copy->tickDestination(kSpareDrive);
}

void leaveTheCopy(Tour& tour) {
    tour.copy->leave();
}

void lookAtTheOutcome(Tour& tour) {
    tickOnly(tour, kDriveToCopy);
}

} // namespace torvane::driver
