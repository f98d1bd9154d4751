#pragma once

namespace torvane {

class Jobs;

/// The command "Terminate Current Task": asks whether the running job shall stop; nothing when none runs.
void terminateCurrentTask(Jobs& jobs);

} // namespace torvane
