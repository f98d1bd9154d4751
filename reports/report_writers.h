#pragma once

namespace torvane {

struct AppState;

// Each writes the report of the active drive, which there must be, under the state's report file name. Returns 1, or 0
// after one "ERROR" log row when no PDF document could be made, and after a box, too, when it could not be saved. On
// the window's thread, which goes on answering meanwhile: 0 after a box, too, when the user has left a disk that takes
// the report too slowly, and when that one is still being written.

/// For a drive with ATA SMART attributes.
int WriteAtaReport(AppState& state);
/// For a solid-state drive.
int WriteSsdReport(AppState& state);
/// For an NVMe drive.
int WriteNvmeReport(AppState& state);
/// For a drive whose interface hands out no monitoring data.
int WriteNoDataReport(AppState& state);

} // namespace torvane
