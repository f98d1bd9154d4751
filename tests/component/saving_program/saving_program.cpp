// Saves message tables as "Update Messages" does, and does not always come to the end of it.
//
//     saving_program die-at:N   saves the new table over what is there; dies at the N-th moment, counted from 0: in
//     front
//                               of and behind every system call of the save that changes a file, and within its writing
//     saving_program for-ever   saves the new table and the old one, over and over, until it is ended from outside
#include "settings/messages.h"
#include "state/app_state.h"
#include "tests/component/import_patched.h"
#include "tests/component/saving_program/message_tables.h"

#include <windows.h>

#include <cstdlib>
#include <string_view>

// The import slots of the functions that change files. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&CreateFileW) __imp_CreateFileW;
extern decltype(&WriteFile) __imp_WriteFile;
extern decltype(&FlushFileBuffers) __imp_FlushFileBuffers;
extern decltype(&CloseHandle) __imp_CloseHandle;
extern decltype(&MoveFileExW) __imp_MoveFileExW;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

using torvane::appState;
using torvane::saveMessages;
using torvane::testing::ImportPatched;
using torvane::testing::tableOf;

int moment = 0;
int lastMoment = 0;

void dieHere() {
    if (moment++ == lastMoment) {
        TerminateProcess(GetCurrentProcess(), torvane::testing::kDied);
    }
}

decltype(&CreateFileW) realCreateFile;
HANDLE WINAPI createFile(LPCWSTR name, DWORD access, DWORD sharing, LPSECURITY_ATTRIBUTES attributes, DWORD disposition,
                         DWORD flags, HANDLE templateFile) {
    dieHere();
    const HANDLE file = realCreateFile(name, access, sharing, attributes, disposition, flags, templateFile);
    dieHere();
    return file;
}

decltype(&WriteFile) realWriteFile;
BOOL WINAPI writeFile(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD count, LPOVERLAPPED overlapped) {
    dieHere();
    const DWORD half = size / 2;
    DWORD first = 0;
    DWORD second = 0;
    if (realWriteFile(file, bytes, half, &first, overlapped) == FALSE) {
        return FALSE;
    }
    dieHere();
    const auto* const rest = static_cast<const char*>(bytes) + half;
    const BOOL written = realWriteFile(file, rest, size - half, &second, overlapped);
    *count = first + second;
    dieHere();
    return written;
}

decltype(&FlushFileBuffers) realFlush;
BOOL WINAPI flush(HANDLE file) {
    const BOOL flushed = realFlush(file);
    dieHere();
    return flushed;
}

decltype(&CloseHandle) realClose;
BOOL WINAPI closeHandle(HANDLE handle) {
    const BOOL closed = realClose(handle);
    dieHere();
    return closed;
}

decltype(&MoveFileExW) realMove;
BOOL WINAPI moveFile(LPCWSTR from, LPCWSTR to, DWORD flags) {
    dieHere();
    const BOOL moved = realMove(from, to, flags);
    dieHere();
    return moved;
}

int saveAndDie() {
    const ImportPatched create(__imp_CreateFileW, &createFile);
    realCreateFile = create.original();
    const ImportPatched write(__imp_WriteFile, &writeFile);
    realWriteFile = write.original();
    const ImportPatched flushing(__imp_FlushFileBuffers, &flush);
    realFlush = flushing.original();
    const ImportPatched close(__imp_CloseHandle, &closeHandle);
    realClose = close.original();
    const ImportPatched move(__imp_MoveFileExW, &moveFile);
    realMove = move.original();
    return saveMessages(appState().messages, tableOf(torvane::testing::kNewTable)) == 1 ? torvane::testing::kSaved
                                                                                        : torvane::testing::kNotSaved;
}

[[noreturn]] void saveForEver() {
    for (;;) {
        saveMessages(appState().messages, tableOf(torvane::testing::kNewTable));
        saveMessages(appState().messages, tableOf(torvane::testing::kOldTable));
    }
}

} // namespace

int main(int count, char** arguments) {
    constexpr std::string_view kDieAt = "die-at:";
    const std::string_view task = count > 1 ? arguments[1] : "";
    if (task == "for-ever") {
        saveForEver();
    }
    if (!task.starts_with(kDieAt)) {
        return 98;
    }
    lastMoment = std::atoi(arguments[1] + kDieAt.size());
    return saveAndDie();
}
