#include "tests/ui/copy_ui_test.h"
#include "tests/ui/driver/shell_dialogs.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>

namespace torvane::driver {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr const char* kCompleted = " Image To Drive SUCCESSFULLY Completed";

class ImageToDriveDialogTest : public CopyUiTest {
  protected:
    /// An image of that size, noise of seed 3; each in a folder of its own, because the program keeps images open.
    [[nodiscard]] fs::path makeImage(std::size_t size) const {
        static int number = 0;
        fs::path image = emptyFolder("image-" + std::to_string(++number)) / "disk.img";
        writeFile(image, noise(3, 0, size));
        return image;
    }
    [[nodiscard]] std::size_t writesToSmall() const {
        return program().benchLog({"target=drive:3", "request=write"}).size();
    }
    void declineWarning(const CopyDialogWindow& dialog) const {
        answerWarning("No");
        expectBoxOver(dialog, "***** Function Cancelled *****", "Image to Drive has been CANCELLED", BoxIcon::kStop,
                      "OK");
    }
    /// Waits until no job is at work. "Start", which asks then, is deaf before, and refuses while the last one's thread
    /// has its last steps to do.
    void expectNoJob(const CopyDialogWindow& dialog) const {
        await("\"Start\" asks", [&] {
            dialog.start();
            return !dialog.window().enabled() && !dismissRefusal(dialog);
        });
        declineWarning(dialog);
    }
    /// True when what has opened over the dialog was that refusal; it is answered.
    [[nodiscard]] bool dismissRefusal(const CopyDialogWindow& dialog) const {
        std::optional<Window> opened;
        await("\"Start\" has opened a window", [&] {
            opened = program().dialog();
            return opened && !(*opened == dialog.window());
        });
        if (opened->text() != "***** Working *****") {
            return false;
        }
        program().awaitBoxOver(dialog.window()).answer("OK");
        return true;
    }
    /// Expects that "Start" does not overwrite the target, and leaves the dialog.
    void expectRefused(const CopyDialogWindow& dialog) const {
        dialog.tickDestination("TARGET");
        dialog.start();
        expectBoxOver(dialog, "******* WARNING *******", "You cannot copy Image to Source Drive", BoxIcon::kStop, "OK");
        expectBoxOver(dialog, "***** Function Cancelled *****", "Image to Drive has been CANCELLED", BoxIcon::kStop,
                      "OK");
        dialog.leave();
    }
    [[nodiscard]] static std::string nativePath(fs::path path) { return path.make_preferred().string(); }
};

TEST_F(ImageToDriveDialogTest, ACancelledFileOpensNothing) {
    pressCopyCommand(kImageToDrive);
    cancelFile(program());
    expectNoBox();
    EXPECT_TRUE(torvane().window().enabled());
}

TEST_F(ImageToDriveDialogTest, ShowsTheImageAndEveryDriveButTheSystems) {
    const fs::path image = makeImage(kMebibyte);
    const CopyDialogWindow dialog = openImageToDrive(image);
    EXPECT_EQ(dialog.window().text(), "Image To Drive");
    EXPECT_EQ(dialog.window().child(kImagePathText).text(), nativePath(image));
    EXPECT_EQ(withoutAccessKey(dialog.terminateButton().text()), "Terninate Image To Drive");
    const ListView destinations = dialog.destinations();
    ASSERT_EQ(destinations.rowCount(), 3);
    EXPECT_THAT(destinations.row(0), ElementsAre("SOURCE", "SRC-1", "0.07 GB"));
    EXPECT_THAT(destinations.row(1), ElementsAre("TARGET", "TGT-2", "0.08 GB"));
    EXPECT_THAT(destinations.row(2), ElementsAre("SMALL", "SML-3", "0.04 GB"));
    expectMountingHint(dialog);
    dialog.leave();
}

TEST_F(ImageToDriveDialogTest, WantsExactlyOneDestination) {
    const CopyDialogWindow dialog = openImageToDrive(makeImage(kMebibyte));
    expectWantsExactlyOneDestination(dialog);
    dialog.leave();
}

TEST_F(ImageToDriveDialogTest, ADeclinedWarningStartsNothing) {
    useUntouchedBench();
    const CopyDialogWindow dialog = openImageToDrive(makeImage(kMebibyte));
    dialog.tickDestination("SMALL");
    dialog.start();
    declineWarning(dialog);
    expectNoJob(dialog);
    EXPECT_EQ(writesToSmall(), 0U);
    EXPECT_EQ(driveStatus("SMALL"), "Idle");
    dialog.leave();
}

TEST_F(ImageToDriveDialogTest, ArrivesWholeOnADiskWithMountedVolumesAndLeavesTheRest) {
    useUntouchedBench();
    constexpr std::size_t kSize = 65 * kMebibyte;
    const CopyDialogWindow dialog = openImageToDrive(makeImage(kSize));
    startOnto(dialog, "TARGET");
    dialog.awaitStatus(kCompleted);
    EXPECT_TRUE(content(2, 0, kSize) == noise(3, 0, kSize));
    EXPECT_TRUE(content(2, kSize, 15 * kMebibyte) == std::string(15 * kMebibyte, '\0'));
    awaitDriveStatus("TARGET", "COMPLETED");
    dialog.leave();
}

constexpr const char* kTooLarge = "***** Image File Too Large *****";
constexpr const char* kTruncate =
    "Image File is LARGER than DESTINATION drive. Do you want to truncate file and continue?";

TEST_F(ImageToDriveDialogTest, ALargerImageIsCutIfTheUserWantsItAndElseLeavesTheDriveAlone) {
    useUntouchedBench();
    const CopyDialogWindow dialog = openImageToDrive(makeImage(45 * kMebibyte));
    startOnto(dialog, "SMALL");
    expectBoxOver(dialog, kTooLarge, kTruncate, BoxIcon::kNone, "No");
    expectNoJob(dialog);
    EXPECT_EQ(dialog.status(), "");
    EXPECT_EQ(writesToSmall(), 0U);
    EXPECT_EQ(driveStatus("SMALL"), "Idle");

    dialog.start();
    answerWarning("Yes");
    expectBoxOver(dialog, kTooLarge, kTruncate, BoxIcon::kNone, "Yes");
    dialog.awaitStatus(kCompleted);
    EXPECT_TRUE(content(3, 0, 40 * kMebibyte) == noise(3, 0, 40 * kMebibyte));
    awaitDriveStatus("SMALL", "COMPLETED");
    dialog.leave();
}

TEST_F(ImageToDriveDialogTest, AnImageThatCannotBeOpenedIsToldAndLogged) {
    const fs::path image = makeImage(kMebibyte);
    const CopyDialogWindow dialog = openImageToDrive(image);
    fs::remove(image);
    startOnto(dialog, "SMALL");
    const std::string text = "ImageToDrive: [" + nativePath(image) + "] OPEN_EXISTING FAILED";
    expectBoxOver(dialog, "***** FATAL SYSTEM ERROR *****", text, BoxIcon::kStop, "OK");
    const LogEntry last = torvane().log().back();
    EXPECT_EQ(last.type, "ERROR");
    EXPECT_EQ(last.message, text);
    dialog.leave();
}

TEST_F(ImageToDriveDialogTest, AnImageOnTheDestinationIsRefusedAlsoWhenMountedSinceTheDrivesWereLoaded) {
    // As far as the bench goes, the images' folder lies on the target's volume Z:, which is there later.
    leaveProgramUsed();
    restart(copyBench().drive("2-target", R"({"number": 2, "bus": "nvme", "size": "80 MiB", "road": "nvme-query",
        "identity": {"product": "TARGET", "revision": "1", "serial": "TGT-2"},
        "volumes": [{"letter": "Z", "extents": [{"offset": "1 MiB", "length": "40 MiB"}]}]})"));
    const fs::path state = program().folder().parent_path() / "bench" / "state.json";
    writeFile(state, R"({"cleaned": [2]})");
    torvane().loadDrives();
    {
        SCOPED_TRACE("mounted since");
        const CopyDialogWindow dialog = openImageToDrive(makeImage(kMebibyte));
        writeFile(state, "{}");
        program().unplug(3); // the bench looks at its state again
        expectRefused(dialog);
    }
    {
        SCOPED_TRACE("mounted when the drives were loaded");
        torvane().loadDrives();
        expectRefused(openImageToDrive(makeImage(kMebibyte)));
    }
    EXPECT_THAT(program().benchLog({"target=drive:2", "request=write"}), IsEmpty());
}

TEST_F(ImageToDriveDialogTest, CannotBeLeftWhileItRunsAndTerminateEndsIt) {
    useBench(copyBench().drive("2-target", R"({"number": 2, "bus": "nvme", "size": "80 MiB", "road": "nvme-query",
        "identity": {"product": "TARGET", "revision": "1", "serial": "TGT-2"},
        "faults": {"slow": [{"firstSector": 70000, "milliseconds": 600000}]}})"));
    const CopyDialogWindow dialog = openImageToDrive(makeImage(70 * kMebibyte));
    startOnto(dialog, "TARGET");
    dialog.awaitStatusStart(" Status: 00:00:");
    EXPECT_THAT(driveStatus("TARGET"), StartsWith("Writing image "));
    dialog.exit();
    expectBoxOver(dialog, "***** ERROR TERMINATE BEFORE EXIT *****", "Terminate Image To Drive before Exiting",
                  BoxIcon::kNone, "OK");
    dialog.terminate();
    program().hurry();
    dialog.awaitStatus(" Image To Drive Terminated -- Not Completed");
    awaitDriveStatus("TARGET", "BAD not completed");
    EXPECT_TRUE(content(2, 0, 32 * kMebibyte) == noise(3, 0, 32 * kMebibyte));
    dialog.leave();
}

} // namespace
} // namespace torvane::driver
