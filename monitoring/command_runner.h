#pragma once

#include "base/whole_file.h"

namespace torvane {

/// Runs `commandLine` hidden, with its standard output and standard error captured to `outputFileName` (created anew in
/// the current directory), and waits for its end without a time-out. A tool of the system is started from the system's
/// own folder (`systemToolPath`); any other program is found by CreateProcess's usual search.
///
/// A thread whose tools are watched (base/tool_watch.h) may be told that nobody waits any more: then the tool and what
/// it has started are ended.
///
/// Returns 1 when the program was started and ended by itself, whatever its exit code; 0 when the output file could not
/// be created, the program not started, or nobody waited for it, after one "ERROR" log row. A failed start leaves the
/// output file behind, empty.
int PARSE_BuildDataFile(const char* outputFileName, const char* commandLine);

/// Loads the whole file into one block, with at least 1024 zero bytes behind it; waits up to five seconds for a writer
/// to close it. Returns null after one "ERROR" log row when the file cannot be opened, does not fit into memory, is
/// 4 GiB or larger, or is read short. An empty file gives an empty text.
LoadedText PARSE_LoadFileIntoBuffer(const char* fileName);

} // namespace torvane
