#pragma once

#include <windows.h>

#include <string>

namespace torvane {

struct AppState;

/// Starts `CopyPortableFiles` into the state's destination folder on a thread of its own, whose handle the state keeps.
/// The thread has the folder to itself: choosing another one meanwhile does not lead its copy elsewhere. False, after
/// one "ERROR" log row, when the system has no room for a thread.
bool startPortableCopy(AppState& state);

/// Copies every file of `kPortableFileList` from the folder of the running program into `destinationFolder`, replacing
/// what is there, and tells the user when all are copied. Each copied file gives one "SUCCESS" log row; the first
/// failure ends the copy with one "ERROR" row, and what was copied stays. Returns the thread's exit code: 1 when all
/// files were copied, else 0.
DWORD CopyPortableFiles(const std::string& destinationFolder);

} // namespace torvane
