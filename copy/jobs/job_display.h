#pragma once

#include "copy/jobs/track.h"

#include <string_view>

namespace torvane {

/// What a copy job shows in its dialog.
///
/// Jobs call from their own thread, and the last calls may come after the user has closed the dialog: an implementation
/// ignores calls while it has no window, and lives until the program ends.
class JobDisplay {
  public:
    virtual ~JobDisplay() = default;

    /// Replaces the status line.
    virtual void setStatus(std::string_view text) = 0;

    /// Replaces the words beside the status line that say what the job has lost; `bad` when it has lost anything.
    virtual void setLosses(std::string_view text, bool bad) = 0;

    /// Asks for the whole dialog, or for the track's place, to be painted anew. Does not wait for it.
    virtual void repaint() = 0;
    virtual void repaintTrack(const TrackArea& area) = 0;

    /// Starts the dialog's timer `kExplosionTimer`; starting it again restarts it.
    virtual void startExplosionTimer(int milliseconds) = 0;
};

} // namespace torvane
