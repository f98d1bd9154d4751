#include "monitoring/command_runner.h"

#include "base/owned_handle.h"
#include "base/tool_watch.h"
#include "base/whole_file.h"
#include "monitoring/child_process.h"
#include "monitoring/system_tool.h"
#include "state/event_log.h"

#include <chrono>
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

/// A command at work and the file that takes its output; either may be missing.
struct RunningCommand {
    UniqueFile output;
    ChildProcess process;
};

/// Only the child of this command inherits its output file, also where the system cannot be told so: one that is
/// started at the same moment by another thread does not, and so cannot keep the file open.
RunningCommand startInto(const char* outputFileName, const char* commandLine, bool watched) {
    const std::string application = systemToolPath(commandLine); // before the lock, as it may log
    static std::mutex oneAtATime;
    const std::scoped_lock lock(oneAtATime);
    RunningCommand command{.output = createInheritableFile(outputFileName), .process = {}};
    if (command.output) {
        command.process = ChildProcess(application, commandLine, command.output.get(), watched);
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

/// Waits for the tool's end, however long it takes. False: whoever watches it has had enough, and the tool was ended.
bool awaitEnd(ChildProcess& process, ToolWatch* watch, const char* commandLine) {
    if (watch == nullptr) {
        process.awaitEnd();
        return true;
    }
    constexpr std::chrono::milliseconds kPause{50};
    const auto begin = std::chrono::steady_clock::now();
    ToolAtWork tool{.name = toolName(commandLine), .subject = toolSubject()};
    bool wanted = true;
    while (wanted && !process.awaitEnd(kPause)) {
        tool.runsSince =
            std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin);
        wanted = watch->mayGoOn(tool);
    }
    if (wanted) {
        process.letGo();
    } else {
        process.end();
    }
    watch->ended();
    return wanted;
}

int logUnwanted(const char* outputFileName) {
    LogEvent("ERROR", "PARSE_BuildDataFile: [%s] TERMINATED before the tool was done", outputFileName);
    return 0;
}

LoadedText logUnreadable(const char* fileName) {
    LogEvent("ERROR", "PARSE_LoadFileIntoBuffer: Could not READ [%s] for processing", fileName);
    return nullptr;
}

} // namespace

int PARSE_BuildDataFile(const char* outputFileName, const char* commandLine) {
    ToolWatch* const watch = toolWatch();
    if (watch != nullptr && !watch->mayBegin()) {
        return logUnwanted(outputFileName);
    }
    RunningCommand command = startInto(outputFileName, commandLine, watch != nullptr);
    if (!command.output) {
        LogEvent("ERROR", "PARSE_BuildDataFile: [%s] CREATE_ALWAYS FAILED", outputFileName);
        return 0;
    }
    if (!command.process) {
        LogEvent("ERROR", "PARSE_BuildDataFile: [%s] CreateProcess FAILED", outputFileName);
        return 0;
    }
    // A tool that fails still has run: what went wrong stands in its output.
    return awaitEnd(command.process, watch, commandLine) ? 1 : logUnwanted(outputFileName);
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
