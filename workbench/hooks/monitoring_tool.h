#pragma once

#include "workbench/session/bench_session.h"

namespace torvane::bench {

/// The monitoring tool is the real one. Where the bench describes it as slow, it takes its time when it opens its first
/// device; any other program goes on at once.
void delayMonitoringTool(BenchSession& session);

} // namespace torvane::bench
