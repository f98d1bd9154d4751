#pragma once

namespace torvane {

struct AppState;

/// The command "Create Report": writes the report of the active drive that suits its SmartType. On the window's thread.
void createReport(AppState& state);

} // namespace torvane
