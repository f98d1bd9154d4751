#pragma once

#include <windows.h>

#include <string>

namespace torvane {

/// Starts `CopyPortableFiles` into the folder on a thread of its own. Several copies may be at work at once, and nobody
/// waits for them. False, after one "ERROR" log row, when the system has no room for a thread.
bool startPortableCopy(std::string destinationFolder);

/// Copies every file of `kPortableFileList` from the folder of the running program into `destinationFolder`, replacing
/// what is there, and tells the user when all are copied. Each copied file gives one "SUCCESS" log row; the first
/// failure ends the copy with one "ERROR" row, and what was copied stays. Returns the thread's exit code: 1 when all
/// files were copied, else 0.
DWORD CopyPortableFiles(const std::string& destinationFolder);

} // namespace torvane
