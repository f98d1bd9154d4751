#include "monitoring/command_runner.h"

#include "base/owned_handle.h"
#include "base/tool_watch.h"
#include "base/whole_file.h"
#include "monitoring/running_command.h"
#include "state/event_log.h"

#include <chrono>
#include <cinttypes>
#include <cstdint>
#include <optional>

namespace torvane {
namespace {

/// Room behind a loaded text, all zero: the text's terminator and more.
constexpr std::uint64_t kZeroTail = 1024;

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
    return awaitEnd(
        process, *watch,
        {.name = toolName(commandLine), .subject = toolSubject(), .began = std::chrono::steady_clock::now()});
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
    const auto makeOutput = [&](SECURITY_ATTRIBUTES* inheritable) {
        return createOutputFile(outputFileName, inheritable);
    };
    RunningCommand command = startInto(makeOutput, commandLine, watch != nullptr);
    if (!command.output) {
        return logOutputNotCreated(outputFileName);
    }
    if (!command.process) {
        return logNotStarted(outputFileName);
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
