#pragma once

namespace torvane {

struct AppState;
struct DriveRecord;

/// True when the user has chosen an active drive.
[[nodiscard]] bool hasActiveDrive(const AppState& state);

/// The active drive; null when none is chosen, after a box with `text`. On the window's thread.
[[nodiscard]] DriveRecord* requireActiveDrive(const AppState& state, const char* text);

} // namespace torvane
