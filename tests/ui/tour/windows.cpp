// The tour's steps in the windows of one drive that copy nothing, and in those of the program itself.

#include "tests/ui/driver/input.h"
#include "tests/ui/tour/tour.h"

#include <algorithm>

namespace torvane::driver {
namespace {

constexpr const char* kTestedDrive = "Quillmark SX240 Solid";
constexpr const char* kSystemDrive = "Northwind HD500 Platter";
constexpr const char* kWrittenDrive = "Fennick F128 Pocket";
constexpr WPARAM kAbout = 16;
constexpr WPARAM kEditMessages = 32;

void click(const Tour& tour, const char* model) {
    const ListView drives = tour.torvane.driveList();
    drives.click(drives.rowWith(0, model));
}

void openFromSystemMenu(const Tour& tour, WPARAM command) {
    tour.torvane.window().post(WM_SYSCOMMAND, command);
    tour.program.awaitDialog().awaitPainted();
}

} // namespace

void testADrive(Tour& tour) {
    constexpr int kStart = 1043;
    constexpr int kStatus = 7401;
    constexpr std::chrono::seconds kTestPatience{120};
    tour.torvane.setLogOpen(false);
    click(tour, kTestedDrive);
    tour.torvane.press(kNistTest);
    const Window test = tour.program.awaitDialog();
    press(test.child(kStart));
    await(
        "the test has passed", [&] { return test.child(kStatus).text() == "NIST Read Test -- PASSED"; }, kTestPatience);
}

void leaveTheTest(Tour& tour) {
    const Window test = tour.program.awaitDialog();
    test.post(WM_CLOSE);
    tour.program.awaitBoxOver(test).answer("Yes");
    await("the read test's dialog has closed", [&] { return !test.exists(); });
}

void lookAtTheBytes(Tour& tour) {
    click(tour, kWrittenDrive);
    tour.torvane.press(kQuickDiskView);
    tour.program.awaitDialog().awaitPainted();
}

void readThePasswords(Tour& tour) {
    constexpr int kBegin = 1026;
    click(tour, kSystemDrive);
    tour.torvane.command(kMenuBitLocker);
    const Window scan = tour.program.awaitDialog();
    press(scan.child(kBegin));
    await("every volume was asked for", [&] {
        scan.settle();
        return std::ranges::none_of(scan.children(),
                                    [](const Window& part) { return part.className() == "TorvaneWaitingStrip"; });
    });
}

void openTheCompany(Tour& tour) {
    tour.torvane.command(kMenuCompany);
    tour.program.awaitDialog().awaitPainted();
}

void openTheMessages(Tour& tour) {
    openFromSystemMenu(tour, kEditMessages);
}

void openAbout(Tour& tour) {
    openFromSystemMenu(tour, kAbout);
}

void openTheLicences(Tour& tour) {
    constexpr int kLicences = 1404;
    press(tour.program.awaitDialog().child(kLicences));
    awaitDialogNamed(tour, "Licences").awaitPainted();
}

void closeAbout(Tour& tour) {
    closeDialog(tour);
    closeDialog(tour);
}

} // namespace torvane::driver
