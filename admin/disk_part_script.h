#pragma once

#include "base/owned_handle.h"
#include "base/whole_file.h"

#include <string>

namespace torvane {

/// One run of diskpart. The files lie in the current folder and stay there.
struct DiskPartScript {
    const char* fileName;
    std::string text;
    std::string resultsFileName;
};

/// Writes the script, and keeps everybody from writing to it as long as the result lives: until diskpart has ended.
/// Another Torvane in the same folder writes scripts of the same names. Readers that share reading are let in, diskpart
/// among them: it opens the scripts of cleans, which were always held so, without asking for more. Null when the file
/// does not hold the script's text then; without a log row.
[[nodiscard]] UniqueFile writeHeld(const DiskPartScript& script);

/// Runs "diskpart /s <script>" into the results file, and waits for its end. False, after the command runner's log row,
/// when it was not started: the results file may then be an earlier run's.
[[nodiscard]] bool runDiskPart(const DiskPartScript& script);

/// What the run printed; null after one log row of the loader.
[[nodiscard]] LoadedText loadResults(const DiskPartScript& script);

/// All three for a script that only asks, or null after one more log row that says what failed.
[[nodiscard]] LoadedText queryDiskPart(const DiskPartScript& script);

/// The row for a script of a query or of mounting that cannot be written.
void logUnwrittenQuery(const DiskPartScript& script);

} // namespace torvane
