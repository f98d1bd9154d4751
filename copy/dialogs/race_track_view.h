#pragma once

#include "base/scale.h"
#include "copy/dialogs/race_track_scene.h"

#include <windows.h>

namespace torvane {

struct RaceTrackState;

/// Paints the race track over the whole client area of a job's dialog. `paintContext` is that of WM_PAINT, `scale` the
/// dialog's; everything reaches the screen in one transfer, each frame of an explosion in one of its own: a failed
/// job's paint takes 300 ms, in which it answers what other threads send. GDI+ must be running. A picture that cannot
/// be loaded is left out.
void paintRaceTrack(HDC paintContext, TrackScene scene, const RaceTrackState& state, Scale scale);

} // namespace torvane
