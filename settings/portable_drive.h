#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace torvane {

class MainView;

/// Where a copy shows how far it is: where scans do, which have the first claim to it.
struct PortableCopyView {
    MainView& view;
    std::function<bool()> isTaken; ///< a scan shows its progress; asked in the copy's thread
};

/// Starts `CopyPortableFiles` into the folder on a thread of its own. Several copies may be at work at once, and nobody
/// waits for them. False, after one "ERROR" log row, when the system has no room for a thread.
bool startPortableCopy(std::string destinationFolder, PortableCopyView place);

/// Copies every file of `kPortableFileList` from the folder of the running program into `destinationFolder`, replacing
/// what is there, and tells the user when all are copied. Each copied file gives one "SUCCESS" log row. The first
/// failure ends the copy with an "ERROR" row and a box; what was copied stays, a file that could not be written whole
/// does not. Returns the thread's exit code: 1 when all files were copied, else 0.
DWORD CopyPortableFiles(const std::string& destinationFolder, const PortableCopyView& place);

} // namespace torvane
