#include "tests/ui/copy_ui_test.h"
#include "tests/ui/driver/input.h"
#include "tests/ui/driver/shell_dialogs.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <regex>

namespace torvane::driver {
namespace {

namespace fs = std::filesystem;

using ::testing::StartsWith;

constexpr std::size_t kSourceSize = 70 * kMebibyte;

/// What the plain and the forensic image have in common.
struct ImageCommand {
    const char* name;
    int button;
    CopyDialogIds ids;
    const char* title;
    const char* completed;
    const char* progress; ///< how the status line begins from the first block on
};

void PrintTo(const ImageCommand& command, std::ostream* stream) {
    *stream << command.name;
}

constexpr ImageCommand kImageCommand{
    "Image", kDriveToImage, kImageIds, "Drive to Image Clone", " Image  SUCCESSFULLY Completed", " Status: 00:00:"};
constexpr ImageCommand kForensicCommand{"Forensic",
                                        kForensicImage,
                                        kForensicIds,
                                        "Drive to Forensic Image",
                                        " Image SUCCESSFULLY Completed",
                                        " Image Status: 00:00:"};

class ImageTest : public CopyUiTest {
  protected:
    [[nodiscard]] CopyDialogWindow open(const ImageCommand& command, const fs::path& folder) const {
        return command.button == kForensicImage ? openForensic("SOURCE", folder) : openImage("SOURCE", folder);
    }
    void answerVerify(const CopyDialogWindow& dialog, const std::string& answer) const {
        expectBoxOver(dialog, "****** VERIFY HASH ******", "Would you like to Verify the Image HASH?", BoxIcon::kNone,
                      answer);
    }
    /// Answers the forensic job's question, when this is one.
    void finish(const ImageCommand& command, const CopyDialogWindow& dialog) const {
        if (command.button == kForensicImage) {
            answerVerify(dialog, "No");
        }
    }
    /// The number in the name of the folder's one image.
    static std::string imageNumber(const fs::path& folder) {
        const std::string name = onlyFile(folder, ".img").filename().string();
        std::smatch match;
        return std::regex_match(name, match, std::regex(R"(SOURCE\.(\d+)\.img)")) ? match[1].str() : "in " + name;
    }
};

class EitherImageTest : public ImageTest, public ::testing::WithParamInterface<ImageCommand> {};

std::string nameOf(const ::testing::TestParamInfo<ImageCommand>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(All, EitherImageTest, ::testing::Values(kImageCommand, kForensicCommand), nameOf);

TEST_P(EitherImageTest, ACancelledFolderIsToldAndNothingOpens) {
    tickOnly("SOURCE");
    pressCopyCommand(GetParam().button);
    (void)awaitFolderBrowser(program());
    EXPECT_FALSE(torvane().window().enabled());
    cancelFolder(program());
    expectStopBox("*** ERROR ***", "Please choose a destination folder.");
    expectNoBox();
}

TEST_P(EitherImageTest, ShowsDriveAndFolderAndDoesNothingBeforeTheStart) {
    const fs::path folder = emptyFolder("shown");
    const CopyDialogWindow dialog = open(GetParam(), folder);
    EXPECT_EQ(dialog.window().text(), GetParam().title);
    EXPECT_EQ(dialog.window().child(kImagingText).text(), " Imaging: SOURCE");
    EXPECT_THAT(dialog.window().child(kFolderText).text(), ::testing::EndsWith("\\shown"));
    EXPECT_EQ(dialog.status(), "");
    dialog.terminate();
    EXPECT_TRUE(dialog.window().enabled()) << "nothing runs yet, and it asks";
    dialog.leave();
    EXPECT_TRUE(fs::is_empty(folder)) << "nothing is made before the start";
}

TEST_P(EitherImageTest, ImagesHoldTheDrivesBytesAndCountOnFromARandomNumberThatIsKept) {
    const fs::path counter = program().folder() / "FileCounter.txt";
    fs::remove(counter);
    int last = 0;
    for (const char* const name : {"first", "second"}) {
        SCOPED_TRACE(name);
        const fs::path folder = emptyFolder(name);
        const CopyDialogWindow dialog = open(GetParam(), folder);
        dialog.start();
        dialog.awaitStatus(GetParam().completed);
        finish(GetParam(), dialog);
        awaitDriveStatus("SOURCE", "COMPLETED");
        EXPECT_TRUE(readFile(onlyFile(folder, ".img")) == noise(7, 0, kSourceSize));
        const int number = std::stoi(imageNumber(folder));
        EXPECT_TRUE(last == 0 || number == last + 1) << number << " after " << last;
        last = number;
        const std::string kept = readFile(counter);
        ASSERT_EQ(kept.size(), 4U);
        EXPECT_EQ(static_cast<unsigned char>(kept[0]) + 256 * static_cast<unsigned char>(kept[1]), number);
        EXPECT_EQ(kept.substr(2), std::string(2, '\0'));
        dialog.leave();
    }
}

TEST_P(EitherImageTest, AnImageThatCannotBeCreatedIsTold) {
    const fs::path folder = emptyFolder("gone");
    {
        const CopyDialogWindow earlier = open(GetParam(), folder);
        earlier.start();
        earlier.awaitStatus(GetParam().completed);
        finish(GetParam(), earlier);
        earlier.leave();
        awaitDriveStatus("SOURCE", "COMPLETED");
    }
    const CopyDialogWindow dialog = open(GetParam(), folder);
    fs::remove_all(folder);
    dialog.start();
    dialog.awaitStatus("Could not CREATE DESTINATION image");
    awaitDriveStatus("SOURCE", "BAD not started"); // no longer the earlier image's word
    dialog.leave();
}

/// The images' folder lies on Z:, which has as much room as the source is large, as far as the program is told.
class ImageRoomTest : public ImageTest, public ::testing::WithParamInterface<ImageCommand> {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        return copyBench().drive("4-volume", R"({"number": 4, "bus": "nvme", "size": "8 GiB", "road": "nvme-query",
        "identity": {"product": "ROOM", "revision": "1", "serial": "R-4"},
        "volumes": [{"letter": "Z", "freeSpace": 73400320,
                     "extents": [{"offset": "1 MiB", "length": "4 GiB"}]}]})");
    }
};

INSTANTIATE_TEST_SUITE_P(All, ImageRoomTest, ::testing::Values(kImageCommand, kForensicCommand), nameOf);

TEST_P(ImageRoomTest, TooLittleIsToldAndExactlyEnoughIsEnough) {
    const fs::path folder = emptyFolder("full");
    tickOnly("TARGET");
    pressCopyCommand(GetParam().button);
    chooseFolder(program(), folder);
    std::string name = folder.string();
    std::replace(name.begin(), name.end(), '/', '\\');
    expectBox("****** NOT ENOUGH SPACE ******",
              "IMAGE Drive is [83886080 bytes]. This is [10485760 bytes] greater than the total FREE SPACE of "
              "[73400320 bytes] on Destination Volume [" +
                  name + "]. Imaging Cancelled",
              BoxIcon::kExclamation, "OK");
    expectNoBox();

    const CopyDialogWindow dialog = open(GetParam(), emptyFolder("exact"));
    EXPECT_EQ(dialog.window().text(), GetParam().title);
    dialog.leave();
}

/// Images of a drive whose first block cannot be read.
class MarkedImageTest : public ImageTest, public ::testing::WithParamInterface<ImageCommand> {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        return copyBenchWithFaults(R"({"reads": [{"firstSector": 3}]})");
    }
};

INSTANTIATE_TEST_SUITE_P(All, MarkedImageTest, ::testing::Values(kImageCommand, kForensicCommand), nameOf);

TEST_P(MarkedImageTest, UnreadableBlocksAreMarkedAndTheImageIsVerifiedAllTheSame) {
    const bool forensic = GetParam().button == kForensicImage;
    const fs::path folder = emptyFolder("marked");
    const CopyDialogWindow dialog = open(GetParam(), folder);
    dialog.start();
    dialog.awaitStatus(GetParam().completed);
    if (forensic) {
        answerVerify(dialog, "Yes");
        expectBoxOver(dialog, "****** VERIFY SUCCEEDED ******", "CREATED File has been verified", BoxIcon::kNone, "OK");
    }
    awaitDriveStatus("SOURCE", forensic ? "BAD 1 unreadable block, verified" : "BAD 1 unreadable block");
    const std::string image = readFile(onlyFile(folder, ".img"));
    EXPECT_TRUE(image == unreadable(32 * kMebibyte) + noise(7, 32 * kMebibyte, 38 * kMebibyte));
    EXPECT_EQ(torvane().log().back().message, "BAD READ BLOCK AT SECTOR: [0]");
    dialog.leave();
}

/// Images that stand in the middle, because the source's second block is held up.
class HeldImageTest : public ImageTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override { return copyBenchHeldAt(kInSecondBlock); }
    void SetUp() override {
        UiTest::SetUp();
        program().takeTime();
    }
    /// Starts an image of which the first block has been copied when this returns.
    [[nodiscard]] CopyDialogWindow startImage(const ImageCommand& command, const fs::path& folder) const {
        const CopyDialogWindow dialog = open(command, folder);
        dialog.start();
        dialog.awaitStatusStart(command.progress);
        return dialog;
    }
};

class EitherHeldImageTest : public HeldImageTest, public ::testing::WithParamInterface<ImageCommand> {};

INSTANTIATE_TEST_SUITE_P(All, EitherHeldImageTest, ::testing::Values(kImageCommand, kForensicCommand), nameOf);

TEST_P(EitherHeldImageTest, CannotBeLeftWhileItRuns) {
    const CopyDialogWindow dialog = startImage(GetParam(), emptyFolder("held"));
    dialog.exit();
    expectBoxOver(dialog, "***** ERROR TERMINATE BEFORE EXIT *****", "Terminate Image before Exiting", BoxIcon::kNone,
                  "OK");
    program().hurry();
    dialog.awaitStatus(GetParam().completed);
    finish(GetParam(), dialog);
    dialog.leave();
}

TEST_F(HeldImageTest, TerminateLeavesAPartialImage) {
    const fs::path folder = emptyFolder("partial");
    const CopyDialogWindow dialog = startImage(kImageCommand, folder);
    dialog.terminate();
    program().hurry();
    dialog.awaitStatus(" Image Terminated -- Not Completed");
    awaitDriveStatus("SOURCE", "BAD not completed");
    dialog.leave();
    const std::string image = readFile(onlyFile(folder, ".img"));
    EXPECT_EQ(image.size(), 64 * kMebibyte) << "the block in flight is written";
    EXPECT_TRUE(image == noise(7, 0, image.size()));
}

// --- forensic image alone ------------------------------------------------------------------------------------------

/// The hash file's text with date and time blotted out.
std::string withoutTime(const std::string& text) {
    return std::regex_replace(text, std::regex(R"(\d\d[/:]\d\d[/:]\d\d(\d\d)?)"), "#");
}

/// Appends zero bytes that take no room.
void lengthen(const fs::path& path, std::int64_t size) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    LARGE_INTEGER end{};
    end.QuadPart = size;
    EXPECT_TRUE(SetFilePointerEx(file, end, nullptr, FILE_BEGIN) && SetEndOfFile(file));
    CloseHandle(file);
}

constexpr const char* kTerminateCaption = "****** FORENSIC IMAGE RUNNING ******";
constexpr const char* kTerminateText =
    "You are about to EXIT Forensic Image and terminate the current image. Is that what you wish to do?";

class ForensicTest : public ImageTest {
  protected:
    /// Makes an image; returns when image and hash file are written and the user is asked whether to verify them.
    [[nodiscard]] CopyDialogWindow makeImage(const fs::path& folder) const {
        CopyDialogWindow dialog = open(kForensicCommand, folder);
        dialog.start();
        dialog.awaitStatus(" Image SUCCESSFULLY Completed");
        (void)program().awaitBoxOver(dialog.window());
        return dialog;
    }
};

TEST_F(ForensicTest, WritesTheHashFileAndVerifiesTheImage) {
    writeFile(program().folder() / "FileCounter.txt", std::string("\x28\x00\x00\x00", 4));
    const fs::path folder = emptyFolder("forensic");
    const CopyDialogWindow dialog = makeImage(folder);
    // MD5 of the source's noise, as md5sum gives it.
    EXPECT_EQ(withoutTime(readFile(folder / "MD5-HASH--SOURCE.41.txt")),
              "KVL Data MD5 HASH\nDate:\t\t\t#\nTime:\t\t\t#\nDrive Model:\t[SOURCE]\nSerial Number:\t[SRC-1]\n"
              "Total Sectors:\t[143360]\nHASH:\t\t\t1B A6 95 A0 6A 5E F7 58 08 7B 79 04 98 06 38 8B ");
    answerVerify(dialog, "Yes");
    expectBoxOver(dialog, "****** VERIFY SUCCEEDED ******", "CREATED File has been verified", BoxIcon::kNone, "OK");
    awaitDriveStatus("SOURCE", "COMPLETED, verified");
    dialog.leave();
}

constexpr int kCaseNumber = 1302;
constexpr int kExaminer = 1303;
constexpr int kNote = 1304;

/// Types digits and capital letters, which arrive as small ones.
void type(const Window& window, const std::string& keys) {
    for (const char key : keys) {
        pressKey(window, static_cast<WORD>(key));
    }
}

TEST_F(ForensicTest, WhatIsTypedUnderCaseStandsInTheRecordsUntilTheProgramEnds) {
    writeFile(program().folder() / "FileCounter.txt", std::string("\x28\x00\x00\x00", 4));
    const fs::path folder = emptyFolder("case");
    const auto openCase = [this](const CopyDialogWindow& dialog) {
        bringToFront(dialog.window());
        pressKey(dialog.window(), 'C', VK_MENU);
        Window box;
        await("the case dialog opens", [&] {
            box = program().dialog().value_or(Window());
            return box.text() == "Case Information";
        });
        return box;
    };
    const auto leaveCase = [](const Window& box, WORD key) {
        pressKey(box, key);
        await("the case dialog has closed", [&] { return !box.exists(); });
    };
    {
        const CopyDialogWindow dialog = open(kForensicCommand, folder);
        Window box = openCase(dialog);
        type(box, "117");
        EXPECT_EQ(box.child(kCaseNumber).text(), "117") << "the first field has the keyboard";
        leaveCase(box, VK_ESCAPE);
        box = openCase(dialog);
        EXPECT_EQ(box.child(kCaseNumber).text(), "") << "Esc has dropped it";
        type(box, std::string(90, '7'));
        EXPECT_EQ(box.child(kCaseNumber).text(), std::string(80, '7')) << "no more is taken";
        pressKey(box, 'E', VK_MENU);
        type(box, "KIM");
        pressKey(box, 'N', VK_MENU);
        type(box, "SAFE");
        leaveCase(box, VK_RETURN);
        dialog.leave();
    }
    const CopyDialogWindow dialog = makeImage(folder);
    const std::string record = readFile(folder / "ACQUISITION--SOURCE.41.txt");
    EXPECT_THAT(record, ::testing::HasSubstr("\r\nCase number: " + std::string(80, '7') +
                                             "\r\nExaminer: kim\r\nNote: safe\r\n"));
    EXPECT_THAT(record, ::testing::HasSubstr("\r\nEnding: completed\r\n"));
    EXPECT_TRUE(fs::exists(folder / "SOURCE.41.img.map"));
    answerVerify(dialog, "No");
    awaitDriveStatus("SOURCE", "COMPLETED");
    const Window box = openCase(dialog);
    EXPECT_EQ(box.child(kExaminer).text(), "kim") << "remembered";
    EXPECT_EQ(box.child(kNote).text(), "safe");
    leaveCase(box, VK_ESCAPE);
    dialog.leave();
}

TEST_F(ForensicTest, AnImageThatWasChangedIsNotVerified) {
    const fs::path folder = emptyFolder("changed");
    const CopyDialogWindow dialog = makeImage(folder);
    {
        std::fstream image(onlyFile(folder, ".img"), std::ios::in | std::ios::out | std::ios::binary);
        image.seekp(5 * kMebibyte);
        image.put('x').put('y');
    }
    answerVerify(dialog, "Yes");
    expectBoxOver(dialog, "****** VERIFY FAILED ******", "CREATED File has NOT been verified", BoxIcon::kNone, "OK");
    awaitDriveStatus("SOURCE", "BAD not verified");
    dialog.leave();
}

TEST_F(ForensicTest, ATerminatedVerificationAsksFirstAndComparesWhatWasRead) {
    const fs::path folder = emptyFolder("stopped");
    const CopyDialogWindow dialog = makeImage(folder);
    // So much to read that the verification surely still runs when it is terminated.
    lengthen(onlyFile(folder, ".img"), 64 * 1024 * std::int64_t{kMebibyte});
    answerVerify(dialog, "Yes");
    dialog.awaitStatusStart(" Status: ");
    dialog.exit();
    expectBoxOver(dialog, "***** ERROR TERMINATE BEFORE EXIT *****", "Terminate Image before Exiting", BoxIcon::kNone,
                  "OK");
    dialog.terminate();
    expectBoxOver(dialog, kTerminateCaption, kTerminateText, BoxIcon::kNone, "Yes");
    expectBoxOver(dialog, "****** VERIFY FAILED ******", "CREATED File has NOT been verified", BoxIcon::kNone, "OK");
    awaitDriveStatus("SOURCE", "BAD not verified");
    dialog.leave();
}

TEST_F(HeldImageTest, AForensicImageGoesOnWhenItsTerminationIsDeclined) {
    const fs::path folder = emptyFolder("declined");
    const CopyDialogWindow dialog = startImage(kForensicCommand, folder);
    dialog.terminate();
    expectBoxOver(dialog, kTerminateCaption, kTerminateText, BoxIcon::kNone, "No");
    program().hurry();
    dialog.awaitStatus(" Image SUCCESSFULLY Completed");
    answerVerify(dialog, "No");
    dialog.leave();
    EXPECT_EQ(readFile(onlyFile(folder, ".img")).size(), kSourceSize);
    EXPECT_THAT(readFile(onlyFile(folder, ".txt", "MD5-HASH--")), StartsWith("KVL Data MD5 HASH\n"))
        << "without verification too";
}

TEST_F(HeldImageTest, ATerminatedForensicImageIsNeitherVerifiedNorHashed) {
    const fs::path folder = emptyFolder("asked");
    const CopyDialogWindow dialog = startImage(kForensicCommand, folder);
    dialog.terminate();
    expectBoxOver(dialog, kTerminateCaption, kTerminateText, BoxIcon::kNone, "Yes");
    program().hurry();
    dialog.awaitStatus(" Image Terminated -- Not Completed");
    dialog.leave();
    // The job has ended when the next one may begin, and has asked nothing until then.
    pressCopyCommand(kForensicImage);
    cancelFolder(program());
    expectStopBox("*** ERROR ***", "Please choose a destination folder.");
    expectNoBox();
    for (const auto& file : fs::directory_iterator(folder)) {
        EXPECT_FALSE(file.path().filename().string().starts_with("MD5-HASH--"))
            << "a terminated image has no hash file";
    }
}

} // namespace
} // namespace torvane::driver
