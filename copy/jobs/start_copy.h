#pragma once

#include "copy/engine/image_file.h"
#include "copy/jobs/copy_order.h"
#include "jobs/jobs.h"

#include <windows.h>

namespace torvane {

struct AppState;
class JobDisplay;

// The copy jobs. Each runs on the calling thread until it is done, and returns the thread's exit code: 1 after a normal
// end (also when terminated or stopped by bad blocks), 0 after an early failure. The system does not fall asleep
// meanwhile. Asked to stop, a job does after the block in flight.

/// Copies the order's source onto its destination, first block first or last block first. A smaller destination ends
/// the copy at its end.
DWORD ForwardClone(AppState& state, JobClaim& claim, const CopyOrder& order, JobDisplay& display);
DWORD ReverseClone(AppState& state, JobClaim& claim, const CopyOrder& order, JobDisplay& display);

/// Copies the source into a numbered image file in the order's folder.
DWORD ImageToFileWorker(AppState& state, JobClaim& claim, const CopyOrder& order, JobDisplay& display);

/// The same with an MD5 digest of what was written, a hash file beside the image, and an optional verification.
DWORD ForensicImageWorker(AppState& state, JobClaim& claim, const CopyOrder& order, JobDisplay& display);

/// Copies the order's image file onto its destination.
DWORD ImageToDriveWorker(AppState& state, JobClaim& claim, const CopyOrder& order, JobDisplay& display);

/// Rescues what can be read of the source into an image or onto the destination.
DWORD RescueWorker(AppState& state, JobClaim& claim, const CopyOrder& order, JobDisplay& display);

/// Reads the order's image and compares its digests with those that are known.
DWORD VerifyImageWorker(AppState& state, JobClaim& claim, const CopyOrder& order, JobDisplay& display);

/// The images that copies leave open until the program ends. Never destroyed, so that the process closes them; the copy
/// at work alone uses them.
[[nodiscard]] OpenImages& keptImages();

/// Starts the order's job on a thread of its own. False, with nothing started, while something stands in its way
/// (an earlier job on a drive may be at its last read), or when the system has no room for a thread; the latter is
/// logged. The display must live until the program ends.
bool startCopy(AppState& state, CopyOrder order, JobDisplay& display);

} // namespace torvane
