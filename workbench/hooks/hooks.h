#pragma once

#include "workbench/hooks/import_patch.h"
#include "workbench/session/bench_session.h"

#include <memory>

namespace torvane::bench {

/// Puts this process on a bench: its imports lead to the bench from now on. Replaces an earlier session.
void installHooks(std::shared_ptr<BenchSession> opened);

/// Takes the process off its bench.
void removeHooks();

/// The bench that this process is on; null when it is on none.
[[nodiscard]] std::shared_ptr<BenchSession> currentSession();

} // namespace torvane::bench
