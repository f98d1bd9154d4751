#pragma once

#include <windows.h>

#include <string>

namespace torvane {

struct AppState;

// The copy jobs. Each takes its drives from `AppState::copy`, runs on the calling thread until it is done, and
// returns the thread's exit code: 1 after a normal end (also when terminated or stopped by bad blocks), 0 after an
// early failure. The system does not fall asleep meanwhile. The job is asked to stop by clearing `AppState::jobActive`;
// it looks after each block. `path` is the folder of an image, or the image that is written to a drive; to a clone it
// says nothing.

/// Copies `copy.source` onto `copy.destination`, first block first or last block first. A smaller destination ends the
/// copy at its end.
DWORD ForwardClone(AppState& state, const std::string& path);
DWORD ReverseClone(AppState& state, const std::string& path);

/// Copies `copy.imageSource` into a numbered image file in the folder `path`.
DWORD ImageToFileWorker(AppState& state, const std::string& path);

/// The same with an MD5 digest of what was written, a hash file beside the image, and an optional verification.
DWORD ForensicImageWorker(AppState& state, const std::string& path);

/// Copies the image file `path` onto `copy.destination`.
DWORD ImageToDriveWorker(AppState& state, const std::string& path);

using CopyWorker = DWORD (*)(AppState& state, const std::string& path);

/// Starts the job on a thread of its own, whose handle the state keeps, with what `destinationFolder` holds now. False,
/// with nothing started, while the thread of an earlier job is still at work (`driveJobAtWork`: its last read may
/// take long) or when the system has no room for a thread.
bool startCopyWorker(AppState& state, CopyWorker worker);

} // namespace torvane
