#pragma once

namespace torvane {

struct AppState;

/// The command "Create Report": writes the report of the active drive that suits its SmartType, opens it and says so.
/// On the window's thread, which waits until the viewer has been asked for.
void CreateReport(AppState& state);

} // namespace torvane
