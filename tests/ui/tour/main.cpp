// Shows Torvane to somebody who has no display at hand: does what a technician does, in every window that the program
// has, and leaves a picture of each step.
//
//   torvane_tour <bench.exe> <bench folder> <Torvane.exe> <folder for the pictures>

#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/driver/screen.h"
#include "tests/ui/tour/tour.h"

#include <cstdio>
#include <exception>

namespace torvane::driver {
namespace {

/// One step: what is done, and the picture of what it leads to.
struct Step {
    const char* picture;
    const char* description;
    void (*run)(Tour&);
    void (*finish)(Tour&) = nullptr; ///< after the picture
};

// A later command of the program joins the tour by one line here.
constexpr Step kSteps[] = {
    {"00-tutorial", "the tutorial greets a new user, until it is told not to", readTheTutorial},
    {"01-start", "Torvane has started; no drive is known yet", closeTheTutorial},
    {"02-drives", "Load Drives has listed the drives of the bench", loadTheDrives},
    {"03-active-drive", "a click has made the first drive the active one; its check box is ticked", pickADrive},
    {"04-another-drive", "a click on another drive brings up its health panel", lookAtEveryDrive},
    {"05-details", "Enter on its row tells all that is known of the drive", lookAtTheDetails, turnThePages},
    {"06-log", "the log panel tells what the scan met", openTheLog},
    {"07-report", "Create Report has written the first drive's report and had it opened", createAReport, keepTheReport},
    {"08-read-test", "a NIST read test of a drive has passed", testADrive, leaveTheTest},
    {"09-hex-viewer", "Quick Disk View shows the drive's bytes", lookAtTheBytes, closeDialog},
    {"10-bitlocker", "the recovery passwords of a drive's volumes", readThePasswords, closeDialog},
    {"11-company", "the company that reports name", openTheCompany, closeDialog},
    {"12-messages", "the sentences of the health panel can be edited", openTheMessages, closeDialog},
    {"13-about", "versions of the program and of its tool", openAbout},
    {"14-licences", "the licences of what is used", openTheLicences, closeAbout},
    {"15-case", "a forensic image can name its case", nameTheCase, closeDialog},
    {"16-forensic-image", "the image of a drive, with its hash file, both in this folder", imageForensically},
    {"17-verified", "the image was read again and has the same hash", verifyTheImage},
    {"18-verify-image", "any image is compared with its hash file", verifyTheImageAgain, leaveTheVerification},
    {"19-warning", "before a drive is overwritten its volumes are named", prepareAClone},
    {"20-clone", "the drive has been cloned onto another one", cloneTheDrive, leaveTheCopy},
    {"21-rescue", "a failing drive is rescued; what could not be read is known", rescueADrive, leaveTheRescue},
    {"22-image", "a raw image of a drive, without a hash", imageADrive, leaveTheCopy},
    {"23-image-to-drive", "an image goes back onto a drive", prepareAnImageToDrive, leaveTheCopy},
    {"24-copied", "the drive list tells how the copies ended", lookAtTheOutcome},
};

void takePicture(const Tour& tour, const Step& step) {
    const Window& window = tour.torvane.window();
    parkMouse();
    window.awaitPainted();
    RECT shown = window.rect();
    if (const auto dialog = tour.program.dialog()) {
        dialog->awaitPainted();
        const RECT front = dialog->rect();
        RECT both{};
        UnionRect(&both, &shown, &front);
        // One that reaches beyond the main window stands alone: there would be nothing in the picture's corners.
        shown = EqualRect(&both, &shown) != FALSE ? shown : front;
    }
    Picture::atRest(shown).save(tour.picturesFolder + "/" + step.picture + ".png");
    std::printf("    %-24s %s\n", (std::string(step.picture) + ".png").c_str(), step.description);
    std::fflush(stdout);
}

void takeTour(const Launch& launch, const std::string& picturesFolder) {
    prepareScreen();
    const Program program(launch);
    if (!program.mainWindow().exists()) {
        throw Failure("no main window: " + program.obituary() + "\n" + describeWindows(program.processId()));
    }
    Tour tour{program, TorvaneWindow(program), picturesFolder, std::nullopt};
    for (const Step& step : kSteps) {
        try {
            step.run(tour);
            takePicture(tour, step);
            if (step.finish != nullptr) {
                step.finish(tour);
            }
        } catch (const Failure&) {
            std::fprintf(stderr, "in the step %s:\n", step.picture);
            Picture::ofScreen(wholeScreen()).save(picturesFolder + "/failed.png");
            throw;
        }
    }
}

} // namespace

void keepPicture(const Tour& tour, const Window& window, const std::string& name, const std::string& description) {
    window.awaitPainted();
    Picture::atRest(window.rect()).save(tour.picturesFolder + "/" + name + ".png");
    std::printf("    %-24s %s\n", (name + ".png").c_str(), description.c_str());
}

Window awaitDialogNamed(const Tour& tour, const std::string& caption) {
    Window dialog;
    await("the window '" + caption + "' is open", [&] {
        dialog = tour.program.dialog().value_or(Window());
        return dialog.exists() && dialog.text() == caption;
    });
    return dialog;
}

void closeDialog(Tour& tour) {
    const Window dialog = tour.program.awaitDialog();
    dialog.post(WM_CLOSE);
    await("the dialog has closed", [&] { return !dialog.exists(); });
}

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
