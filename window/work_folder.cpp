#include "window/work_folder.h"

#include "base/format.h"
#include "base/owned_handle.h"
#include "base/program_folder.h"
#include "base/system_error.h"
#include "base/wide_text.h"
#include "settings/message_file.h"
#include "ui/prompts.h"

#include <windows.h>

#include <string>

namespace torvane {

namespace {

bool hasMessages(const std::wstring& folder) {
    const std::wstring path = folder + wideText(kMessageFileName);
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::string currentFolder() {
    return ansiText(wideCurrentFolder());
}

/// NO_ERROR, or why the file cannot be opened as its loader opens it.
DWORD openingError(const char* fileName) {
    const UniqueFile file{CreateFileA(fileName, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)};
    return file ? NO_ERROR : GetLastError();
}

/// NO_ERROR, or why no file can be made in the current folder. Leaves none behind.
DWORD makingError() {
    const std::string name = formatText("Torvane %lu.tmp", GetCurrentProcessId());
    const UniqueFile file{CreateFileA(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr)};
    return file ? NO_ERROR : GetLastError();
}

} // namespace

void chooseWorkFolder() {
    const std::wstring own = wideFolderOfProgram();
    if (!hasMessages(L"") && hasMessages(own + L'\\')) {
        SetCurrentDirectoryW(own.c_str());
    }
}

void tellUnopenedMessages() {
    const DWORD error = openingError(kMessageFileName);
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) {
        return;
    }
    // Whoever held the file may have let go of it meanwhile.
    const std::string reason = error == NO_ERROR ? "" : "\n\n" + systemErrorText(error);
    prompts::stop("***** MESSAGE FILE NOT OPENED *****",
                  formatText("The file [%s] cannot be opened for reading and writing in the folder\n\n%s%s\n\nTorvane "
                             "ends, and has changed nothing. Take the write protection off the file or its disk, or "
                             "copy the whole folder of Torvane to where files can be written, and start it there.",
                             kMessageFileName, currentFolder().c_str(), reason.c_str())
                      .c_str());
}

void tellReadOnlyFolder() {
    const DWORD error = makingError();
    if (error == NO_ERROR) {
        return;
    }
    prompts::stop(
        "***** FOLDER IS READ-ONLY *****",
        formatText("Torvane cannot make files in the folder in which it works:\n\n%s\n\n%s\n\nDrives can be listed, "
                   "viewed and read. These will not work: health readings, Drive Mounting, Set and Clear "
                   "Read-Only, Clean Disk and every copy to a drive, the numbers of images, reports, the "
                   "Bitlocker scan, web pages, saved messages and company information, and the log of the "
                   "day.\n\nStart Torvane from a folder in which files can be made.",
                   currentFolder().c_str(), systemErrorText(error).c_str())
            .c_str());
}

} // namespace torvane
