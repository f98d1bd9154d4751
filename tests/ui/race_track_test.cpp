#include "tests/ui/copy_ui_test.h"
#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/driver/resource_counts.h"
#include "tests/ui/expect_soon.h"

#include <gmock/gmock.h>

#include <utility>

namespace torvane::driver {
namespace {

using ::testing::HasSubstr;

constexpr COLORREF kDialogColour = RGB(0xDA, 0xDF, 0xEA);

/// A clone's direction outlives its dialog, so a test that reverses one leaves the program used.
class RaceTrackTest : public CopyUiTest {
  protected:
    void SetUp() override {
        UiTest::SetUp();
        parkMouse();
    }

    /// A place of the dialog's client area as the screen shows it now.
    [[nodiscard]] static Picture look(const CopyDialogWindow& dialog, const RECT& place) {
        const RECT client = dialog.window().clientRect();
        return Picture::ofScreen(
            {client.left + place.left, client.top + place.top, client.left + place.right, client.top + place.bottom});
    }

    /// True when the dialog shows a shipped picture there: each pixel of it that hides what lies behind it.
    [[nodiscard]] bool shows(const CopyDialogWindow& dialog, const std::string& picture, LONG x, LONG y) const {
        const std::string file = (program().folder() / picture).string();
        const Picture onBlack = Picture::ofFile(file, RGB(0, 0, 0));
        const Picture onWhite = Picture::ofFile(file, RGB(255, 255, 255));
        dialog.window().awaitPainted();
        const Picture seen = look(dialog, {x, y, x + onBlack.width(), y + onBlack.height()});
        int solid = 0;
        for (int row = 0; row < seen.height(); ++row) {
            for (int column = 0; column < seen.width(); ++column) {
                const COLORREF colour = onBlack.at(column, row);
                if (colour != onWhite.at(column, row)) {
                    continue;
                }
                ++solid;
                if (seen.at(column, row) != colour) {
                    return false;
                }
            }
        }
        return solid > 500;
    }

    /// A shipped picture at a place of the dialog's client area.
    struct Shipped {
        const char* picture;
        LONG x;
        LONG y;
    };
    /// Expects that the dialog shows the one and not the other.
    void expectTrack(const CopyDialogWindow& dialog, const Shipped& shown, const Shipped& absent) const {
        parkMouse();
        expectSoon([&] {
            EXPECT_TRUE(shows(dialog, shown.picture, shown.x, shown.y)) << shown.picture;
            EXPECT_FALSE(shows(dialog, absent.picture, absent.x, absent.y)) << absent.picture;
        });
    }

    // The clone's track: where the car waits, and the empty road.
    static constexpr RECT kAtStart{10, 192, 70, 236};
    static constexpr RECT kOnTheWay{310, 192, 370, 236};
    // What the dialog's timer repaints while the car stands at the start.
    static constexpr RECT kExplosion{10, 182, 80, 242};
};

TEST_F(RaceTrackTest, LiesOnTheDialogsColourWithTheCarAtItsStart) {
    const CopyDialogWindow dialog = openClone("SOURCE");
    dialog.window().awaitPainted();
    expectSoon([&] {
        EXPECT_EQ(look(dialog, {4, 155, 8, 240}).count(kDialogColour), 4 * 85) << "left of the track";
        EXPECT_EQ(look(dialog, {400, 152, 410, 160}).count(kDialogColour), 80) << "above the track";
        EXPECT_EQ(look(dialog, {60, 170, 780, 230}).count(kDialogColour), 0) << "the track has no holes";
        EXPECT_TRUE(look(dialog, kAtStart) != look(dialog, kOnTheWay)) << "no car at the start";
    });
    dialog.leave();
}

TEST_F(RaceTrackTest, ForensicImageIsAPoliceChaseThatEndsAtTheCourtHouse) {
    const CopyDialogWindow dialog = openForensic("SOURCE", emptyFolder("chase"));
    expectTrack(dialog, {"police-1-car.png", 10, 32}, {"race-car.png", 10, 32});
    dialog.start();
    dialog.awaitStatus(" Image SUCCESSFULLY Completed");
    program().awaitBoxOver(dialog.window()).answer("No");
    expectTrack(dialog, {"court-house.png", 770, 14}, {"trophy.png", 770, 14});
    expectTrack(dialog, {"court-house.png", 770, 14}, {"police-1-car.png", 10, 32});
    dialog.leave();
}

TEST_F(RaceTrackTest, PlainImageIsARaceForTheTrophy) {
    const CopyDialogWindow dialog = openImage("SOURCE", emptyFolder("race"));
    expectTrack(dialog, {"race-car.png", 10, 32}, {"police-1-car.png", 10, 32});
    dialog.start();
    dialog.awaitStatus(" Image  SUCCESSFULLY Completed");
    expectTrack(dialog, {"trophy.png", 770, 14}, {"court-house.png", 770, 14});
    dialog.leave();
}

TEST_F(RaceTrackTest, CloneEndsAtTheTrophyAlsoWhereTheDestinationDoesAndTheNextBeginsAnew) {
    constexpr std::size_t kSmallSize = 40 * kMebibyte;
    const CopyDialogWindow dialog = openClone("SOURCE");
    const Shipped car{"race-car.png", 10, 182};
    const Shipped trophy{"trophy.png", 770, 164};
    expectTrack(dialog, car, trophy);
    startOnto(dialog, "SMALL");
    dialog.awaitStatus(" Image Completed");
    expectTrack(dialog, trophy, car);
    awaitDriveStatus("SMALL", "BAD 30 MB of the source not copied");
    EXPECT_EQ(content(3, 0, kSmallSize), noise(7, 0, kSmallSize));
    dialog.leave();
    const CopyDialogWindow next = openClone("SOURCE");
    expectTrack(next, car, trophy);
    next.leave();
}

TEST_F(RaceTrackTest, ExplosionRepeatsUntilTheDialogIsLeft) {
    useBench(copyBenchWithFaults(R"({"slow": [{"firstSector": 0, "milliseconds": 600000}]})"));
    const CopyDialogWindow dialog = openClone("SOURCE");
    startOnto(dialog, "TARGET");
    dialog.awaitStatusStart(" Status: ");
    dialog.terminate();
    program().hurry();
    dialog.awaitStatus(" User Terminated Image");
    // Nobody touches the window: its own timer plays the frames again and again. A busy screen may skip some of them,
    // so what counts is that the place never comes to rest.
    constexpr int kChangesOfSeveralRounds = 8;
    Picture last = look(dialog, kExplosion);
    int changes = 0;
    await("the explosion has played several times", [&] {
        Picture now = look(dialog, kExplosion);
        changes += now != last ? 1 : 0;
        last = std::move(now);
        return changes >= kChangesOfSeveralRounds;
    });
    dialog.leave();
}

TEST_F(RaceTrackTest, SixtyRepaintsLeaveNothingBehind) {
    const CopyDialogWindow dialog = openClone("SOURCE");
    const auto repaint = [&](int times) {
        for (int i = 0; i < times; ++i) {
            RedrawWindow(dialog.window().handle(), nullptr, nullptr, RDW_INVALIDATE);
            dialog.window().awaitPainted();
        }
    };
    repaint(3); // what the system keeps for itself after the first use
    const ResourceCounts before = countResources(program().processId());
    ASSERT_GT(before.gdiObjects, 0);
    repaint(60);
    // A leak in every tenth repaint would show; the system's own caches may still take a few.
    constexpr int kSlack = 4;
    expectSoon([&] {
        const ResourceCounts after = countResources(program().processId());
        EXPECT_LE(after.gdiObjects, before.gdiObjects + kSlack) << before << " became " << after;
        EXPECT_LE(after.kernelHandles, before.kernelHandles + kSlack) << before << " became " << after;
    });
    dialog.leave();
}

TEST_F(RaceTrackTest, AReverseCloneArrivesWholeAndItsTrackStaysForTheNextDialog) {
    useUntouchedBench();
    leaveProgramUsed();
    constexpr std::size_t kSourceSize = 70 * kMebibyte;
    {
        const CopyDialogWindow dialog = openClone("SOURCE");
        press(dialog.window().child(kReverseClone));
        startOnto(dialog, "TARGET");
        dialog.awaitStatus(" Clone SUCCESSFULLY Completed");
        EXPECT_EQ(content(2, 0, kSourceSize), noise(7, 0, kSourceSize));
        awaitDriveStatus("TARGET", "COMPLETED");
        const auto writes = program().benchLog({"target=drive:2", "request=write"});
        ASSERT_EQ(writes.size(), 3U);
        EXPECT_THAT(writes.front(), HasSubstr("offset=" + std::to_string(38 * kMebibyte)));
        EXPECT_THAT(writes.back(), HasSubstr("offset=0 length=6291456"));
        dialog.leave();
    }
    // The direction belongs to the last clone that was started; the new dialog's car waits at the left all the same.
    const CopyDialogWindow dialog = openClone("SOURCE");
    dialog.window().awaitPainted();
    expectSoon([&] {
        EXPECT_TRUE(look(dialog, kAtStart) != look(dialog, kOnTheWay));
        const Picture reverseFinish = look(dialog, {12, 172, 30, 230});
        EXPECT_GT(reverseFinish.count(RGB(255, 255, 255)), 0) << "the chequered finish is at the left";
    });
    dialog.leave();
}

} // namespace
} // namespace torvane::driver
