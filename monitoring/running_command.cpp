#include "monitoring/running_command.h"

#include "base/tool_watch.h"
#include "monitoring/system_tool.h"
#include "state/event_log.h"

#include <mutex>

namespace torvane {

UniqueFile createOutputFile(const char* fileName, SECURITY_ATTRIBUTES* inheritable) {
    return UniqueFile{CreateFileA(fileName, GENERIC_READ | GENERIC_WRITE | FILE_READ_ATTRIBUTES | FILE_WRITE_ATTRIBUTES,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE, inheritable, CREATE_ALWAYS, 0, nullptr)};
}

RunningCommand startInto(const std::function<UniqueFile(SECURITY_ATTRIBUTES*)>& makeOutput, const char* commandLine,
                         bool watched) {
    const std::string application = systemToolPath(commandLine); // before the lock, as it may log
    // The length stays zero: the system looks at the descriptor and the inherit flag alone.
    SECURITY_ATTRIBUTES inheritable{};
    inheritable.bInheritHandle = TRUE;
    static std::mutex oneAtATime;
    const std::scoped_lock lock(oneAtATime);
    RunningCommand command{.output = makeOutput(&inheritable), .process = {}};
    if (command.output) {
        command.process = ChildProcess(application, commandLine, command.output.get(), watched);
        SetHandleInformation(command.output.get(), HANDLE_FLAG_INHERIT, 0);
    }
    return command;
}

bool awaitEnd(ChildProcess& process, ToolWatch& watch, const AwaitedTool& tool,
              const std::function<void()>& meanwhile) {
    constexpr std::chrono::milliseconds kPause{50};
    ToolAtWork atWork{.name = tool.name, .subject = tool.subject};
    bool wanted = true;
    while (wanted && !process.awaitEnd(kPause)) {
        meanwhile();
        atWork.runsSince =
            std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - tool.began);
        wanted = watch.mayGoOn(atWork);
    }
    if (wanted) {
        process.letGo();
    } else {
        process.end();
    }
    watch.ended();
    return wanted;
}

int logOutputNotCreated(const char* outputFileName) {
    LogEvent("ERROR", "PARSE_BuildDataFile: [%s] CREATE_ALWAYS FAILED", outputFileName);
    return 0;
}

int logNotStarted(const char* outputFileName) {
    LogEvent("ERROR", "PARSE_BuildDataFile: [%s] CreateProcess FAILED", outputFileName);
    return 0;
}

int logUnwanted(const char* outputFileName) {
    LogEvent("ERROR", "PARSE_BuildDataFile: [%s] TERMINATED before the tool was done", outputFileName);
    return 0;
}

} // namespace torvane
