#pragma once

#include <cstdint>

namespace torvane {

// Where the race track lies in the job dialogs. Unit: pixels of the dialog's client area.

struct TrackArea {
    std::int32_t left;
    std::int32_t top;
    std::int32_t right;
    std::int32_t bottom;

    bool operator==(const TrackArea&) const = default;
};

/// What a moving vehicle repaints: in the clone and image-to-drive dialogs, and in the two image dialogs.
inline constexpr TrackArea kCloneTrack{10, 160, 830, 241};
inline constexpr TrackArea kImageTrack{10, 10, 830, 91};

/// The vehicle's y on either track.
inline constexpr std::int32_t kCloneCarY = 182;
inline constexpr std::int32_t kImageCarY = 32;

/// The vehicle's x at no and at full progress; a reverse clone runs the other way.
inline constexpr std::int32_t kTrackStartX = 10;
inline constexpr std::int32_t kTrackLength = 750;
inline constexpr std::int32_t kTrackFinishX = kTrackStartX + kTrackLength;

/// The dialog timer that repaints the vehicle's place while a failed job's explosion is shown.
inline constexpr int kExplosionTimer = 7000;

} // namespace torvane
