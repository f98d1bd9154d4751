#include "tests/ui/copy_ui_test.h"
#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/driver/resource_counts.h"
#include "tests/ui/expect_soon.h"

#include <algorithm>
#include <iterator>
#include <map>

namespace torvane::driver {
namespace {

namespace fs = std::filesystem;

enum class Kind { kClone, kImage, kForensic, kImageToDrive, kVerifyImage };

struct DialogCase {
    const char* name;
    Kind kind;
    SIZE client;
    LONG trackTop;
    std::vector<std::string> buttons; ///< from left to right
};

void PrintTo(const DialogCase& dialog, std::ostream* stream) {
    *stream << dialog.name;
}

std::string nameOf(const ::testing::TestParamInfo<DialogCase>& info) {
    return info.param.name;
}

const std::vector<DialogCase> kCases = {
    {"Clone", Kind::kClone, {840, 341}, 160, {"Start Clone", "Terminate Clone", "Exit"}},
    {"Image", Kind::kImage, {840, 179}, 10, {"Start Image", "Terminate Image", "Exit"}},
    {"Forensic", Kind::kForensic, {840, 172}, 10, {"Start Image", "Terminate Image", "Exit"}},
    {"ImageToDrive",
     Kind::kImageToDrive,
     {840, 328},
     160,
     {"Start Image To Drive", "Terninate Image To Drive", "Exit"}},
    {"VerifyImage", Kind::kVerifyImage, {840, 294}, 10, {"Start Verification", "Terminate Verification", "Exit"}},
};

class CopyDialogsTest : public CopyUiTest, public ::testing::WithParamInterface<DialogCase> {
  protected:
    [[nodiscard]] CopyDialogWindow open() const {
        switch (GetParam().kind) {
        case Kind::kClone:
            return openClone("SOURCE");
        case Kind::kImage:
            return openImage("SOURCE", program().folder());
        case Kind::kForensic:
            return openForensic("SOURCE", program().folder());
        case Kind::kImageToDrive:
        case Kind::kVerifyImage:
            break;
        }
        const fs::path image = emptyFolder("image") / "disk.img";
        writeFile(image, noise(3, 0, kMebibyte));
        return GetParam().kind == Kind::kVerifyImage ? openVerifyImage(image) : openImageToDrive(image);
    }
    [[nodiscard]] static std::vector<Window> pushButtons(const CopyDialogWindow& dialog) {
        return {dialog.startButton(), dialog.terminateButton(), dialog.exitButton()};
    }
    static void expectButtonsOfOneSizeThatFitTheirTexts(const CopyDialogWindow& dialog) {
        std::vector<std::string> words;
        const RECT first = dialog.startButton().rect();
        for (const Window& button : pushButtons(dialog)) {
            words.push_back(withoutAccessKey(button.text()));
            EXPECT_EQ(width(button.rect()), width(first)) << button.describe();
            EXPECT_EQ(height(button.rect()), height(first)) << button.describe();
            EXPECT_EQ(button.rect().top, first.top) << button.describe();
            const SIZE needed = idealButtonSize(button);
            EXPECT_LE(needed.cx, width(first)) << button.describe();
            EXPECT_LE(needed.cy, height(first)) << button.describe();
        }
        EXPECT_EQ(words, GetParam().buttons);
    }
    static void expectNothingOverlapsOrCoversTheTrack(const CopyDialogWindow& dialog) {
        const RECT client = dialog.window().clientRect();
        EXPECT_EQ(width(client), GetParam().client.cx);
        EXPECT_EQ(height(client), GetParam().client.cy);
        const RECT area{0, 0, width(client), height(client)};
        const RECT track{10, GetParam().trackTop, 830, GetParam().trackTop + 81};
        const std::vector<Window> children = dialog.window().children();
        for (std::size_t i = 0; i < children.size(); ++i) {
            const RECT place = children[i].rectIn(dialog.window());
            EXPECT_TRUE(inside(place, area)) << children[i].describe();
            EXPECT_FALSE(overlap(place, track)) << children[i].describe();
            for (std::size_t j = i + 1; j < children.size(); ++j) {
                EXPECT_FALSE(overlap(children[i].rect(), children[j].rect()))
                    << children[i].describe() << " and " << children[j].describe();
            }
        }
    }
    static void expectAccessKeysOfTheirOwn(const CopyDialogWindow& dialog) {
        std::map<char, std::string> keys;
        for (const Window& child : dialog.window().children()) {
            const char key = accessKey(child.text());
            if (key != '\0') {
                EXPECT_TRUE(keys.emplace(key, child.text()).second) << keys[key] << " and " << child.text();
            } else {
                EXPECT_NE(child.className(), "Button") << child.describe();
            }
        }
    }
    static void expectDialogColourAndTrack(const CopyDialogWindow& dialog) {
        dialog.window().awaitPainted();
        parkMouse();
        const RECT client = dialog.window().clientRect();
        const LONG top = client.top + GetParam().trackTop;
        expectSoon([&] {
            const Picture edge = Picture::ofScreen({client.left, client.top, client.left + 8, client.bottom});
            EXPECT_EQ(edge.count(RGB(0xDA, 0xDF, 0xEA)), edge.width() * edge.height());
            const Picture track = Picture::ofScreen({client.left + 10, top, client.left + 830, top + 81});
            EXPECT_LT(track.count(RGB(0xDA, 0xDF, 0xEA)), track.width() * track.height() / 4);
        });
    }
    static void expectEnterStartsNothingAndEscapeLeaves(const CopyDialogWindow& dialog) {
        bringToFront(dialog.window());
        if (GetParam().kind == Kind::kClone || GetParam().kind == Kind::kImageToDrive) {
            expectSoon([&] { EXPECT_EQ(focused(dialog.window()).id(), kDestinationList); });
            pressKey(dialog.window(), VK_RETURN);
            EXPECT_TRUE(dialog.window().enabled()) << "a box has opened";
            EXPECT_EQ(focused(dialog.window()).id(), kDestinationList);
        }
        EXPECT_EQ(dialog.status(), "");
        pressKey(dialog.window(), VK_ESCAPE);
        await("the dialog has closed", [&] { return !dialog.window().exists(); });
    }
};

INSTANTIATE_TEST_SUITE_P(All, CopyDialogsTest, ::testing::ValuesIn(kCases), nameOf);

TEST_P(CopyDialogsTest, LooksAsItShouldAndObeysTheKeyboard) {
    const CopyDialogWindow dialog = open();
    expectButtonsOfOneSizeThatFitTheirTexts(dialog);
    expectNothingOverlapsOrCoversTheTrack(dialog);
    expectAccessKeysOfTheirOwn(dialog);
    expectDialogColourAndTrack(dialog);
    expectEnterStartsNothingAndEscapeLeaves(dialog);
}

TEST_P(CopyDialogsTest, OpeningAndLeavingLeaksNothing) {
    const auto round = [this] {
        open().leave();
        torvane().window().send(WM_NULL); // answered when the command is over, with everything that it held
    };
    constexpr int kWarmUp = 2;
    for (int i = 0; i < kWarmUp; ++i) {
        round();
    }
    const ResourceCounts before = countResources(program().processId());
    constexpr int kRounds = 6;
    for (int i = 0; i < kRounds; ++i) {
        round();
    }
    constexpr int kSlack = 4;
    // Wine's open-file dialog keeps a handle each time that a file is chosen in it.
    const bool choosesFile = GetParam().kind == Kind::kImageToDrive || GetParam().kind == Kind::kVerifyImage;
    const int choosersOwn = choosesFile ? kRounds : 0;
    // Threads of the system's choosers let go of their things a moment later.
    expectSoon([&] {
        const ResourceCounts after = countResources(program().processId());
        EXPECT_LE(after.kernelHandles, before.kernelHandles + kSlack + choosersOwn) << before << " became " << after;
        EXPECT_LE(after.gdiObjects, before.gdiObjects + kSlack) << before << " became " << after;
        EXPECT_LE(after.windows, before.windows) << before << " became " << after;
    });
}

/// Jobs that end badly, and what they leave in the process.
class CopyTroubleTest : public CopyUiTest {};

TEST_F(CopyTroubleTest, TheEleventhUnreadableBlockEndsTheCloneWithAnExplosion) {
    // Twelve blocks of which the first eleven cannot be read, onto a drive without content of its own.
    useBench(copyBench()
                 .drive("1-source", R"({"number": 1, "bus": "nvme", "size": "400 MiB", "road": "nvme-query",
        "backing": {"pattern": "zero"}, "identity": {"product": "SOURCE", "revision": "1", "serial": "SRC-1"},
        "faults": {"reads": [{"firstSector": 0, "sectors": 720896}]}})")
                 .drive("2-target", R"({"number": 2, "bus": "nvme", "size": "512 MiB", "road": "nvme-query",
        "identity": {"product": "TARGET", "revision": "1", "serial": "TGT-2"}})"));
    const CopyDialogWindow dialog = openClone("SOURCE");
    startOnto(dialog, "TARGET");
    dialog.awaitStatus(" User Terminated Image");
    awaitDriveStatus("TARGET", "BAD not completed, 11 unreadable blocks");
    int rows = 0;
    for (const LogEntry& entry : torvane().log()) {
        rows += entry.message.starts_with("BAD READ BLOCK AT SECTOR: [") ? 1 : 0;
    }
    EXPECT_EQ(rows, 11);
    EXPECT_EQ(torvane().log().back().message, "BAD READ BLOCK AT SECTOR: [655360]");
    EXPECT_EQ(program().benchLog({"target=drive:2", "request=write"}).size(), 11U);
    EXPECT_TRUE(content(2, 320 * kMebibyte, 32 * kMebibyte) == unreadable(32 * kMebibyte));
    // The window lives while the explosion repeats.
    dialog.window().send(WM_NULL);
    dialog.leave();
}

TEST_F(CopyTroubleTest, AVanishedDestinationIsCountedToTheEnd) {
    useBench(copyBenchHeldAt(kInSecondBlock));
    const CopyDialogWindow dialog = openClone("SOURCE");
    startOnto(dialog, "TARGET");
    dialog.awaitStatusStart(" Status: 00:00:");
    const int rows = torvane().logList().rowCount();
    program().unplug(2);
    program().hurry();
    dialog.awaitStatus(" Image Completed");
    awaitDriveStatus("TARGET", "BAD 2 failed writes");
    EXPECT_EQ(torvane().logList().rowCount(), rows) << "failed writes are counted, nothing more";
    dialog.leave();
}

TEST_F(CopyTroubleTest, JobsLoseNoHandle) {
    // A small source: what is counted is jobs.
    useBench(copyBench().drive("1-source", R"({"number": 1, "bus": "nvme", "size": "2 MiB", "road": "nvme-query",
        "backing": {"pattern": "noise", "seed": 7},
        "identity": {"product": "SOURCE", "revision": "1", "serial": "SRC-1"}})"));
    const fs::path folder = emptyFolder("many");
    const CopyDialogWindow dialog = openForensic("SOURCE", folder);
    const auto begun = [&] { return std::distance(fs::directory_iterator(folder), fs::directory_iterator()); };
    const auto round = [&] {
        // "Start" is deaf until the thread of the round before has ended. A job begins with its image.
        const auto before = begun();
        await("the next image begins", [&] {
            dialog.start();
            return waitUntil([&] { return begun() > before; }, std::chrono::seconds(3));
        });
        program().awaitBoxOver(dialog.window()).answer("Yes");
        program().awaitBoxOver(dialog.window()).answer("OK");
    };
    for (int i = 0; i < 3; ++i) {
        round();
    }
    const auto lowest = [&] {
        int handles = countResources(program().processId()).kernelHandles;
        (void)waitUntil(
            [&] {
                handles = std::min(handles, countResources(program().processId()).kernelHandles);
                return false;
            },
            std::chrono::seconds(1));
        return handles;
    };
    const int before = lowest();
    for (int i = 0; i < 8; ++i) {
        round();
    }
    expectSoon([&] { EXPECT_LE(countResources(program().processId()).kernelHandles, before + 4); });
    dialog.leave();
}

/// The copy bench, but the source and one destination are drives with ATA security.
class LockedDriveTest : public CopyUiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        return copyBench()
            .drive("1-source", sataDrive(1, "SOURCE", "locked"))
            .drive("3-small", sataDrive(3, "SMALL", "enabled"))
            .drive("4-open", sataDrive(4, "OPEN", "disabled"));
    }

    static std::string sataDrive(int number, const std::string& name, const std::string& security) {
        const std::string serial = "LCK-" + std::to_string(number);
        return R"({"bus": "sata", "road": "ata", "size": "64 MiB", "number": )" + std::to_string(number) +
               R"(, "identity": {"product": ")" + name + R"(", "revision": "1", "serial": ")" + serial +
               R"("}, "ata": {"model": ")" + name + R"(", "serial": ")" + serial + R"(", "security": ")" + security +
               "\"}}";
    }

    static constexpr const char* kLocked =
        "The source is LOCKED (ATA security): every copy fails until its password is entered.";
};

TEST_F(LockedDriveTest, IsToldInEveryDialogThatCopiesFromIt) {
    const auto expectTold = [](const CopyDialogWindow& dialog) {
        EXPECT_EQ(dialog.losses().text(), kLocked);
        dialog.leave();
    };
    expectTold(openClone("SOURCE"));
    expectTold(openImage("SOURCE", program().folder()));
    expectTold(openForensic("SOURCE", program().folder()));
    expectTold(openRescue("SOURCE"));
}

TEST_F(LockedDriveTest, ADestinationThatMayLockIsToldOnceItIsPointedAt) {
    const CopyDialogWindow dialog = openClone("OPEN");
    EXPECT_EQ(dialog.losses().text(), "");
    const ListView destinations = dialog.destinations();
    destinations.click(destinations.rowWith(0, "SMALL"));
    expectSoon([&] {
        EXPECT_EQ(dialog.losses().text(),
                  "The destination has an ATA password: it locks when it loses power, and the copy fails.");
    });
    destinations.click(destinations.rowWith(0, "TARGET"));
    expectSoon([&] { EXPECT_EQ(dialog.losses().text(), ""); });
    dialog.leave();
}

} // namespace
} // namespace torvane::driver
