#include "copy/dialogs/race_track_scene.h"

#include "copy/jobs/track.h"
#include "state/race_track_state.h"

namespace torvane {

namespace {

constexpr std::string_view kTrack = "race-track.png";
constexpr std::string_view kReverseTrack = "reverse-race-track.png";
constexpr std::string_view kRaceCar = "race-car.png";
constexpr std::string_view kPoliceCar = "police-1-car.png";
constexpr std::string_view kUndrawnPoliceCar = "police-2-car.png";
constexpr std::string_view kTrophy = "trophy.png";
constexpr std::string_view kCourtHouse = "court-house.png";
constexpr std::string_view kExplosionA = "explosion-a.png";
constexpr std::string_view kExplosionB = "explosion-b.png";
constexpr std::string_view kExplosionC = "explosion-c.png";
constexpr std::string_view kExplosionD = "explosion-d.png";

// The prize stands a little higher than the vehicle, and beside its place where the finish is at the right.
constexpr int kPrizeRise = 18;
constexpr int kPrizeShift = 10;

// So does the explosion.
constexpr int kExplosionRise = 10;

/// A vehicle's place on the track.
struct Place {
    int x;
    int y;
};

/// The clone and the image to drive have a track that runs either way. An image to drive never sets the direction
/// itself: its track follows the last clone on purpose.
bool followsDirection(TrackScene scene) {
    return scene == TrackScene::kClone || scene == TrackScene::kImageToDrive;
}

bool isForensic(TrackScene scene) {
    return scene == TrackScene::kForensicImage;
}

std::vector<std::string_view> picturesOf(TrackScene scene) {
    if (isForensic(scene)) {
        // The second police car is loaded and drawn nowhere, on purpose.
        return {kTrack, kPoliceCar, kUndrawnPoliceCar, kCourtHouse};
    }
    if (followsDirection(scene)) {
        return {kTrack, kReverseTrack, kRaceCar, kTrophy};
    }
    return {kTrack, kRaceCar, kTrophy};
}

Sprite groundOf(TrackScene scene, bool reverse) {
    const TrackArea& area = followsDirection(scene) ? kCloneTrack : kImageTrack;
    return {reverse ? kReverseTrack : kTrack, area.left, area.top};
}

std::vector<Sprite> explosion(Place car, bool lastFrameAlone) {
    if (lastFrameAlone) {
        // Lower than as the last frame of the sequence, on purpose.
        return {{kExplosionD, car.x + 20, car.y}};
    }
    const int y = car.y - kExplosionRise;
    return {{kExplosionA, car.x + 40, y},
            {kExplosionB, car.x + 30, y},
            {kExplosionC, car.x + 25, y},
            {kExplosionD, car.x + 20, y}};
}

Sprite prize(TrackScene scene, bool reverse, Place car) {
    return {isForensic(scene) ? kCourtHouse : kTrophy, car.x + (reverse ? 0 : kPrizeShift), car.y - kPrizeRise};
}

Sprite vehicle(TrackScene scene, Place car) {
    return {isForensic(scene) ? kPoliceCar : kRaceCar, car.x, car.y};
}

} // namespace

RaceTrack layOutRaceTrack(TrackScene scene, const RaceTrackState& state) {
    const bool reverse = followsDirection(scene) && state.reverse != 0;
    const Place car{state.carX, state.carY};

    RaceTrack track;
    track.pictures = picturesOf(scene);
    track.ground = groundOf(scene, reverse);
    if (state.failed == 1) {
        track.pictures.insert(track.pictures.end(), {kExplosionA, kExplosionB, kExplosionC, kExplosionD});
        // Nothing ever sets the frame, so the explosion plays anew at every paint; kept on purpose.
        track.figures = explosion(car, state.explosionFrame != 0);
    } else if (state.succeeded == 1) {
        track.figures = {prize(scene, reverse, car)};
    } else {
        track.figures = {vehicle(scene, car)};
    }
    return track;
}

} // namespace torvane
