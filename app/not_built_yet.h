#pragma once

namespace torvane {

/// Logs that the job behind a command is not there yet. Each call goes with the work that builds its job.
void notBuiltYet(const char* command);

} // namespace torvane
