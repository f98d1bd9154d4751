#pragma once

#include "workbench/session/bench_session.h"

namespace torvane::bench {

/// NO_ERROR, or why the plain file cannot be opened so: as the bench's description says of those that are written.
[[nodiscard]] DWORD refusalOf(BenchSession& session, const wchar_t* path, DWORD access, DWORD disposition);

} // namespace torvane::bench
