#pragma once

#include "copy/engine/block_hasher.h"
#include "copy/jobs/rescue_shown.h"
#include "copy/jobs/run_figures.h"
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

    /// Replaces the words beside the status line that say what the job has lost; `bad` when it has lost anything. Ends
    /// the run.
    virtual void setLosses(std::string_view text, bool bad) = 0;

    /// Shows how far a run is, in place of these words. The first call begins the run, whose rate and time the display
    /// tells. Does not wait for it.
    virtual void showRun(const RunFigures& run) = 0;
    /// The run has ended: the words stand there again.
    virtual void endRun() = 0;

    /// Shows where an image goes: into this folder, and once it exists, what its whole name is. Does not wait for it.
    virtual void setImagePlace(std::string_view path) = 0;

    /// The job, or the verification behind it, is over; `good` when nothing was lost. Calls a user who has turned to
    /// something else. Does not wait for it.
    virtual void callUser(bool good) = 0;

    /// Shows what a verification has made of an image beside what is known of it: both of a kind, or neither. Only the
    /// verification of an image does.
    virtual void showDigests(const Digests& known, const Digests& made) = 0;

    /// Shows how a rescue is. Does not wait for it.
    virtual void showRescue(const RescueShown& shown) = 0;

    /// Asks for the whole dialog, or for the track's place, to be painted anew. Does not wait for it.
    virtual void repaint() = 0;
    virtual void repaintTrack(const TrackArea& area) = 0;

    /// Starts the dialog's timer `kExplosionTimer`; starting it again restarts it.
    virtual void startExplosionTimer(int milliseconds) = 0;
};

} // namespace torvane
