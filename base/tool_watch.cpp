#include "base/tool_watch.h"

#include "base/ascii.h"
#include "base/format.h"

#include <algorithm>
#include <utility>

namespace torvane {

namespace {

thread_local ToolWatch* currentWatch = nullptr;
thread_local const std::string* currentSubject = nullptr;

} // namespace

ToolWatchScope::ToolWatchScope(ToolWatch& watch) : outer_(std::exchange(currentWatch, &watch)) {}

ToolWatchScope::~ToolWatchScope() {
    currentWatch = outer_;
}

ToolSubject::ToolSubject(std::string subject)
    : subject_(std::move(subject)), outer_(std::exchange(currentSubject, &subject_)) {}

ToolSubject::~ToolSubject() {
    currentSubject = outer_;
}

std::string driveSubject(std::int32_t driveNumber) {
    return formatText("drive %d", driveNumber);
}

ToolWatch* toolWatch() {
    return currentWatch;
}

std::string toolSubject() {
    return currentSubject == nullptr ? std::string() : *currentSubject;
}

std::string_view programWord(std::string_view commandLine) {
    commandLine.remove_prefix(std::min(commandLine.find_first_not_of(" \t"), commandLine.size()));
    if (commandLine.starts_with('"')) {
        commandLine.remove_prefix(1);
        return commandLine.substr(0, commandLine.find('"'));
    }
    return commandLine.substr(0, commandLine.find_first_of(" \t"));
}

std::string toolName(std::string_view commandLine) {
    constexpr std::string_view kExtension = ".exe";
    const std::string_view program = programWord(commandLine);
    std::string name = lowerAsciiText(program.substr(program.find_last_of("\\/:") + 1));
    if (name.size() > kExtension.size() && name.ends_with(kExtension)) {
        name.resize(name.size() - kExtension.size());
    }
    return name;
}

std::string stillWaitingText(const ToolAtWork& tool) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(tool.runsSince).count();
    const std::string subject = tool.subject.empty() ? "" : " on " + tool.subject;
    return formatText("still waiting for %s%s, %d s", tool.name.c_str(), subject.c_str(), static_cast<int>(seconds));
}

} // namespace torvane
