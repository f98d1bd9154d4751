#pragma once

namespace torvane {

struct AppState;

/// The command "Create Report": writes the report of the active drive that suits its SmartType, opens it and says so.
/// On the window's thread, which waits until the viewer has been asked for. True when the report was made.
bool CreateReport(AppState& state);

} // namespace torvane
