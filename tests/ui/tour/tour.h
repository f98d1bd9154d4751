#pragma once

#include "tests/ui/copy_dialog_window.h"
#include "tests/ui/torvane_window.h"

#include <optional>
#include <string>

namespace torvane::driver {

/// What the steps of the tour work with.
struct Tour {
    const Program& program;
    TorvaneWindow torvane;
    std::string picturesFolder;
    std::optional<CopyDialogWindow> copy; ///< the copy dialog that a step has left open for the next
};

/// Keeps a picture of a window beside those of the steps, and says so.
void keepPicture(const Tour& tour, const Window& window, const std::string& name, const std::string& description);

/// Waits for the dialog in front that has that caption.
[[nodiscard]] Window awaitDialogNamed(const Tour& tour, const std::string& caption);

/// Closes the dialog in front.
void closeDialog(Tour& tour);

// --- the steps, in groups: what is done before a step's picture is taken, and what after it
// ---------------------------

// Drives, and what is told of them (drives.cpp)
void readTheTutorial(Tour& tour);
void closeTheTutorial(Tour& tour);
void loadTheDrives(Tour& tour);
void pickADrive(Tour& tour);
void lookAtEveryDrive(Tour& tour);
void lookAtTheDetails(Tour& tour);
void turnThePages(Tour& tour);
void openTheLog(Tour& tour);
void createAReport(Tour& tour);
void keepTheReport(Tour& tour);

// Windows of one drive and of the program (windows.cpp)
void testADrive(Tour& tour);
void leaveTheTest(Tour& tour);
void lookAtTheBytes(Tour& tour);
void readThePasswords(Tour& tour);
void openTheCompany(Tour& tour);
void openTheMessages(Tour& tour);
void openAbout(Tour& tour);
void openTheLicences(Tour& tour);
void closeAbout(Tour& tour);

// Copies (copies.cpp)
void nameTheCase(Tour& tour);
void imageForensically(Tour& tour);
void verifyTheImage(Tour& tour);
void verifyTheImageAgain(Tour& tour);
void leaveTheVerification(Tour& tour);
void prepareAClone(Tour& tour);
void cloneTheDrive(Tour& tour);
void rescueADrive(Tour& tour);
void leaveTheRescue(Tour& tour);
void imageADrive(Tour& tour);
void prepareAnImageToDrive(Tour& tour);
void leaveTheCopy(Tour& tour);
void lookAtTheOutcome(Tour& tour);

} // namespace torvane::driver
