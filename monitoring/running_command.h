#pragma once

#include "base/owned_handle.h"
#include "monitoring/child_process.h"

#include <chrono>
#include <functional>
#include <string>

namespace torvane {

class ToolWatch;

/// The file that takes a tool's output, made anew in the current folder. `inheritable`: may be null.
[[nodiscard]] UniqueFile createOutputFile(const char* fileName, SECURITY_ATTRIBUTES* inheritable);

/// A command at work and the file that takes its output; either may be missing.
struct RunningCommand {
    UniqueFile output;
    ChildProcess process;
};

/// Makes the file for the output by `makeOutput`, which is given what makes it inheritable, and starts the command.
/// Only this command's child inherits the file, also where the system cannot be told so: one that is started at the
/// same moment by another thread does not, and so cannot keep the file open. `watched`: see ChildProcess.
[[nodiscard]] RunningCommand startInto(const std::function<UniqueFile(SECURITY_ATTRIBUTES*)>& makeOutput,
                                       const char* commandLine, bool watched);

/// A tool that is waited for.
struct AwaitedTool {
    std::string name;    ///< as ToolAtWork's
    std::string subject; ///< as ToolAtWork's
    std::chrono::steady_clock::time_point began;
};

/// Waits for the tool's end, and calls `meanwhile` several times a second. False: `watch` has had enough, and the tool
/// was ended.
[[nodiscard]] bool awaitEnd(
    ChildProcess& process, ToolWatch& watch, const AwaitedTool& tool, const std::function<void()>& meanwhile = [] {});

/// One "ERROR" log row each, about the file that was to take a tool's output. Return 0.
int logOutputNotCreated(const char* outputFileName);
int logNotStarted(const char* outputFileName);
int logUnwanted(const char* outputFileName);

} // namespace torvane
