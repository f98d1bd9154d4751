#pragma once

#include "monitoring/running_command.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace torvane {

/// A command that runs before its turn. What it prints stays in a capture (monitoring/capture_file.h), so that until
/// its turn the file that it is meant for is as it was.
class CommandAhead {
  public:
    /// Starts it; what it is asked about is told by `subject` (base/tool_watch.h). None, without a log row, when there
    /// is no room for its capture, when it cannot be started, or when this thread's tools are not wanted any more.
    [[nodiscard]] static std::optional<CommandAhead> start(const std::string& commandLine, std::string subject);

    [[nodiscard]] bool hasEnded() const;

    /// Waits for its end. False: this thread's watch has had enough, and it was ended.
    [[nodiscard]] bool awaitEnd(const std::function<void()>& meanwhile);

    /// Its turn: does what PARSE_BuildDataFile does with the command, log rows and result included, and calls
    /// `meanwhile` several times a second while it waits.
    [[nodiscard]] int buildDataFile(const char* outputFileName, const std::function<void()>& meanwhile);

    /// Where it has not ended by itself: ends it and what it has started. Several are killed before the first is
    /// waited for.
    void kill();
    /// Waits until it has gone, but no longer than until then.
    void awaitKilled(std::chrono::steady_clock::time_point deadline) const;

  private:
    CommandAhead(RunningCommand command, AwaitedTool tool) : command_(std::move(command)), tool_(std::move(tool)) {}

    RunningCommand command_;
    AwaitedTool tool_;
};

} // namespace torvane
