#include "copy/dialogs/race_track_scene.h"
#include "copy/jobs/track.h"
#include "state/race_track_state.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace torvane {

static void PrintTo(const Sprite& sprite, std::ostream* out) {
    *out << sprite.picture << " at " << sprite.x << ", " << sprite.y;
}

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsSupersetOf;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

constexpr std::array kScenes{TrackScene::kClone, TrackScene::kImage, TrackScene::kForensicImage,
                             TrackScene::kImageToDrive};
constexpr std::array kTwoWayScenes{TrackScene::kClone, TrackScene::kImageToDrive};
constexpr std::array kOneWayScenes{TrackScene::kImage, TrackScene::kForensicImage};

struct Job {
    Job(std::int32_t carX, std::int32_t carY) {
        state.carX = carX;
        state.carY = carY;
    }
    RaceTrackState state;
};

TEST(RaceTrackScene, GroundOfTheTwoWayDialogsLiesBelowTheirLists) {
    const Job job(10, kCloneCarY);
    for (const TrackScene scene : kTwoWayScenes) {
        EXPECT_EQ(layOutRaceTrack(scene, job.state).ground, (Sprite{"race-track.png", 10, 160}));
    }
}

TEST(RaceTrackScene, GroundOfTheImageDialogsLiesAtTheirTop) {
    const Job job(10, kImageCarY);
    for (const TrackScene scene : kOneWayScenes) {
        EXPECT_EQ(layOutRaceTrack(scene, job.state).ground, (Sprite{"race-track.png", 10, 10}));
    }
}

TEST(RaceTrackScene, GroundOfTheTwoWayDialogsFollowsTheLastClonesDirection) {
    Job job(760, kCloneCarY);
    job.state.reverse = 1;
    for (const TrackScene scene : kTwoWayScenes) {
        EXPECT_EQ(layOutRaceTrack(scene, job.state).ground, (Sprite{"reverse-race-track.png", 10, 160}));
    }
}

TEST(RaceTrackScene, ImageDialogsKnowNoDirection) {
    Job job(10, kImageCarY);
    job.state.reverse = 1;
    for (const TrackScene scene : kOneWayScenes) {
        EXPECT_EQ(layOutRaceTrack(scene, job.state).ground, (Sprite{"race-track.png", 10, 10}));
    }
    job.state.succeeded = 1;
    job.state.carX = 760;
    EXPECT_THAT(layOutRaceTrack(TrackScene::kImage, job.state).figures, ElementsAre(Sprite{"trophy.png", 770, 14}));
    EXPECT_THAT(layOutRaceTrack(TrackScene::kForensicImage, job.state).figures,
                ElementsAre(Sprite{"court-house.png", 770, 14}));
}

TEST(RaceTrackScene, VehicleStandsWhereTheJobIs) {
    const Job clone(397, kCloneCarY);
    const Job image(42, kImageCarY);
    for (const TrackScene scene : kTwoWayScenes) {
        EXPECT_THAT(layOutRaceTrack(scene, clone.state).figures, ElementsAre(Sprite{"race-car.png", 397, 182}));
    }
    EXPECT_THAT(layOutRaceTrack(TrackScene::kImage, image.state).figures, ElementsAre(Sprite{"race-car.png", 42, 32}));
    EXPECT_THAT(layOutRaceTrack(TrackScene::kForensicImage, image.state).figures,
                ElementsAre(Sprite{"police-1-car.png", 42, 32}));
}

TEST(RaceTrackScene, ReverseClonesCarStartsAtTheRightEnd) {
    Job job(kTrackFinishX, kCloneCarY);
    job.state.reverse = 1;
    EXPECT_THAT(layOutRaceTrack(TrackScene::kClone, job.state).figures, ElementsAre(Sprite{"race-car.png", 760, 182}));
}

TEST(RaceTrackScene, TrophyStandsBesideTheFinishOfAForwardJob) {
    Job job(760, kCloneCarY);
    job.state.succeeded = 1;
    for (const TrackScene scene : kTwoWayScenes) {
        EXPECT_THAT(layOutRaceTrack(scene, job.state).figures, ElementsAre(Sprite{"trophy.png", 770, 164}));
    }
}

TEST(RaceTrackScene, TrophyOfAReverseCloneStandsAtTheCarsOwnPlace) {
    Job job(10, kCloneCarY);
    job.state.succeeded = 1;
    job.state.reverse = 1;
    for (const TrackScene scene : kTwoWayScenes) {
        EXPECT_THAT(layOutRaceTrack(scene, job.state).figures, ElementsAre(Sprite{"trophy.png", 10, 164}));
    }
}

TEST(RaceTrackScene, FailedJobExplodesInFourFramesInEveryDialog) {
    for (const TrackScene scene : kScenes) {
        Job job(300, 182);
        job.state.failed = 1;
        EXPECT_THAT(layOutRaceTrack(scene, job.state).figures,
                    ElementsAre(Sprite{"explosion-a.png", 340, 172}, Sprite{"explosion-b.png", 330, 172},
                                Sprite{"explosion-c.png", 325, 172}, Sprite{"explosion-d.png", 320, 172}));
    }
}

TEST(RaceTrackScene, ExplosionPlaysAgainAtEveryPaint) {
    Job job(300, 32);
    job.state.failed = 1;
    EXPECT_EQ(layOutRaceTrack(TrackScene::kImage, job.state).figures.size(), 4U);
    EXPECT_EQ(layOutRaceTrack(TrackScene::kImage, job.state).figures.size(), 4U);
    EXPECT_EQ(job.state.explosionFrame, 0);
}

TEST(RaceTrackScene, FrameThatIsSetShowsTheWreckAlone) {
    for (const std::int32_t frame : {1, 4, -1}) {
        Job job(300, 32);
        job.state.failed = 1;
        job.state.explosionFrame = frame;
        EXPECT_THAT(layOutRaceTrack(TrackScene::kForensicImage, job.state).figures,
                    ElementsAre(Sprite{"explosion-d.png", 320, 32}));
    }
}

TEST(RaceTrackScene, FailureIsShownBeforeSuccess) {
    // Too many unreadable blocks in the remainder alone leave both flags set.
    for (const TrackScene scene : kScenes) {
        Job job(760, 182);
        job.state.failed = 1;
        job.state.succeeded = 1;
        EXPECT_EQ(layOutRaceTrack(scene, job.state).figures.size(), 4U);
    }
}

TEST(RaceTrackScene, OnlyOneIsFailureOrSuccess) {
    Job job(10, 182);
    job.state.failed = 2;
    job.state.succeeded = -1;
    EXPECT_THAT(layOutRaceTrack(TrackScene::kClone, job.state).figures, ElementsAre(Sprite{"race-car.png", 10, 182}));
}

TEST(RaceTrackScene, LoadsWhatItsDialogUses) {
    const Job job(10, 182);
    for (const TrackScene scene : kTwoWayScenes) {
        EXPECT_THAT(layOutRaceTrack(scene, job.state).pictures,
                    UnorderedElementsAre("race-track.png", "reverse-race-track.png", "race-car.png", "trophy.png"));
    }
    EXPECT_THAT(layOutRaceTrack(TrackScene::kImage, job.state).pictures,
                UnorderedElementsAre("race-track.png", "race-car.png", "trophy.png"));
}

TEST(RaceTrackScene, SecondPoliceCarIsLoadedAndNotDrawn) {
    Job job(10, 32);
    for (const std::int32_t failed : {0, 1}) {
        job.state.failed = failed;
        const RaceTrack track = layOutRaceTrack(TrackScene::kForensicImage, job.state);
        EXPECT_THAT(track.pictures,
                    IsSupersetOf({"race-track.png", "police-1-car.png", "police-2-car.png", "court-house.png"}));
        for (const Sprite& figure : track.figures) {
            EXPECT_NE(figure.picture, "police-2-car.png");
        }
    }
}

TEST(RaceTrackScene, LoadsTheExplosionOnlyAfterAFailure) {
    for (const TrackScene scene : kScenes) {
        Job job(10, 32);
        EXPECT_THAT(layOutRaceTrack(scene, job.state).pictures, Not(Contains("explosion-a.png")));
        job.state.failed = 1;
        job.state.explosionFrame = 1;
        EXPECT_THAT(layOutRaceTrack(scene, job.state).pictures,
                    IsSupersetOf({"explosion-a.png", "explosion-b.png", "explosion-c.png", "explosion-d.png"}));
    }
}

TEST(RaceTrackScene, DrawsNothingThatItDoesNotLoad) {
    for (const TrackScene scene : kScenes) {
        for (int flags = 0; flags < 8; ++flags) {
            Job job(10, 32);
            job.state.reverse = flags & 1;
            job.state.failed = (flags >> 1) & 1;
            job.state.succeeded = (flags >> 2) & 1;
            const RaceTrack track = layOutRaceTrack(scene, job.state);
            EXPECT_THAT(track.pictures, Contains(track.ground.picture));
            for (const Sprite& figure : track.figures) {
                EXPECT_THAT(track.pictures, Contains(figure.picture));
            }
        }
    }
}

} // namespace
} // namespace torvane
