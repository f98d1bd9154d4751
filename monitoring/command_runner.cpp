#include "monitoring/command_runner.h"

#include "base/owned_handle.h"
#include "base/whole_file.h"
#include "state/event_log.h"

#include <cinttypes>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

namespace torvane {
namespace {

/// Room behind a loaded text, all zero: the text's terminator and more.
constexpr std::uint64_t kZeroTail = 1024;

/// A file that a child may inherit.
UniqueFile createInheritableFile(const char* fileName) {
    // The length stays zero: the system looks at the descriptor and the inherit flag alone.
    SECURITY_ATTRIBUTES inheritable{};
    inheritable.bInheritHandle = TRUE;
    return UniqueFile{CreateFileA(fileName, GENERIC_READ | GENERIC_WRITE | FILE_READ_ATTRIBUTES | FILE_WRITE_ATTRIBUTES,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE, &inheritable, CREATE_ALWAYS, 0, nullptr)};
}

/// Starts the command without a window, its output going to `output` and its input being empty. Returns the process, or
/// null.
UniqueHandle startHidden(const char* commandLine, HANDLE output) {
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.wShowWindow = SW_HIDE;
    startup.hStdOutput = output;
    startup.hStdError = output;

    std::string ownCommandLine(commandLine); // CreateProcess may write into its argument
    PROCESS_INFORMATION child{};
    if (!CreateProcessA(nullptr, ownCommandLine.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr,
                        &startup, &child)) {
        return {};
    }
    const UniqueHandle mainThread{child.hThread};
    ResumeThread(mainThread.get());
    return UniqueHandle{child.hProcess};
}

/// A command at work and the file that takes its output; either may be missing.
struct RunningCommand {
    UniqueFile output;
    UniqueHandle process;
};

/// Only the child of this command inherits its output file: one that is started at the same moment by another thread
/// does not, and so cannot keep the file open.
RunningCommand startInto(const char* outputFileName, const char* commandLine) {
    static std::mutex oneAtATime;
    const std::scoped_lock lock(oneAtATime);
    RunningCommand command{.output = createInheritableFile(outputFileName), .process = {}};
    if (command.output) {
        command.process = startHidden(commandLine, command.output.get());
        SetHandleInformation(command.output.get(), HANDLE_FLAG_INHERIT, 0);
    }
    return command;
}

/// Opens for reading while nobody can write. A tool's console, which shares the tool's output, may outlive the tool for
/// a moment, so a writer is given some time to go away.
UniqueFile openFinishedFile(const char* fileName) {
    constexpr DWORD kPatienceMs = 5000;
    constexpr DWORD kPauseMs = 10;
    for (DWORD waited = 0;; waited += kPauseMs) {
        UniqueFile file{CreateFileA(fileName, GENERIC_READ | FILE_READ_ATTRIBUTES, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, 0, nullptr)};
        const DWORD error = file ? ERROR_SUCCESS : GetLastError();
        if (error != ERROR_SHARING_VIOLATION || waited >= kPatienceMs) {
            return file;
        }
        Sleep(kPauseMs);
    }
}

/// Waits for the process's end, however long it takes.
void waitForEnd(HANDLE process) {
    WaitForSingleObject(process, INFINITE);
    // A tool that fails still has run: what went wrong stands in its output.
    DWORD exitCode = 0;
    GetExitCodeProcess(process, &exitCode);
}

LoadedText logUnreadable(const char* fileName) {
    LogEvent("ERROR", "PARSE_LoadFileIntoBuffer: Could not READ [%s] for processing", fileName);
    return nullptr;
}

} // namespace

int PARSE_BuildDataFile(const char* outputFileName, const char* commandLine) {
    const RunningCommand command = startInto(outputFileName, commandLine);
    if (!command.output) {
        LogEvent("ERROR", "PARSE_BuildDataFile: [%s] CREATE_ALWAYS FAILED", outputFileName);
        return 0;
    }
    if (!command.process) {
        LogEvent("ERROR", "PARSE_BuildDataFile: [%s] CreateProcess FAILED", outputFileName);
        return 0;
    }
    waitForEnd(command.process.get());
    return 1;
}

LoadedText PARSE_LoadFileIntoBuffer(const char* fileName) {
    const UniqueFile file = openFinishedFile(fileName);
    if (!file) {
        // Misspelt, and kept: users search their logs for the row as it is.
        LogEvent("ERROR", "PARSE_LoadFileIntoBuffer: [%s] OPEN_WXISTING FAILED", fileName);
        return nullptr;
    }
    const std::optional<std::uint64_t> size = sizeOfFile(file.get());
    if (!size) {
        return logUnreadable(fileName);
    }
    // Only the low half of the size is allocated: a larger file is refused below.
    LoadedText block = allocateZeroed((*size & MAXDWORD) + kZeroTail);
    if (!block) {
        LogEvent("ERROR", "PARSE_LoadFileIntoBuffer: Could not allocate [%" PRIu64 "] bytes of memory",
                 *size + kZeroTail);
        return nullptr;
    }
    if (!readWholeFile(file.get(), *size, block.get())) {
        return logUnreadable(fileName);
    }
    return block;
}

} // namespace torvane
