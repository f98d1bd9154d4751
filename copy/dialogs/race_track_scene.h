#pragma once

#include <string_view>
#include <vector>

namespace torvane {

struct RaceTrackState;

/// Which job dialog a race track belongs to.
enum class TrackScene { kClone, kImage, kForensicImage, kImageToDrive };

/// A picture file and where its top left corner lies, in pixels of the dialog's client area.
struct Sprite {
    std::string_view picture;
    int x = 0;
    int y = 0;

    bool operator==(const Sprite&) const = default;
};

/// Everything that a race track shows: a painter needs no other knowledge of the job. Picture names point to constants.
struct RaceTrack {
    std::vector<std::string_view> pictures; ///< loaded at every paint, drawn or not
    Sprite ground;

    /// What stands on the ground, each drawn over the one before it: one sprite, or the frames of the explosion. Every
    /// frame but the last is shown for `kExplosionFrameMilliseconds`.
    std::vector<Sprite> figures;
};

inline constexpr int kExplosionFrameMilliseconds = 100;

/// The race track of a job in this state. Reads each of the state's numbers once.
[[nodiscard]] RaceTrack layOutRaceTrack(TrackScene scene, const RaceTrackState& state);

} // namespace torvane
