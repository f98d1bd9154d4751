#pragma once

#include "base/owned_handle.h"
#include "base/whole_file.h"
#include "state/folder_turn.h"

#include <optional>
#include <string>

namespace torvane {

/// One run of diskpart. The files lie in the current folder and stay there.
struct DiskPartScript {
    const char* fileName;
    std::string text;
    std::string resultsFileName;
};

/// A script that nobody else can change.
struct HeldScript {
    std::optional<MachineClaim> turn; ///< in this folder
    UniqueFile file;                  ///< empty: it does not hold the script's text

    explicit operator bool() const { return static_cast<bool>(file); }
};

/// Writes the script when no other Torvane in the same folder runs one (state/folder_turn.h), and keeps everybody from
/// writing to it as long as the result lives: until diskpart has ended and its results are read. Readers that share
/// reading are let in, diskpart among them: it opens the scripts of cleans, which were always held so, without asking
/// for more. Empty, without a log row, when another Torvane's turn does not end, or the script cannot be written.
[[nodiscard]] HeldScript writeHeld(const DiskPartScript& script);

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
