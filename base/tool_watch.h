#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace torvane {

/// A tool that runs, as whoever waits for it speaks of it.
struct ToolAtWork {
    std::string name;    ///< "smartctl"
    std::string subject; ///< what it is asked about, "drive 3"; empty when nobody said
    std::chrono::milliseconds runsSince{};
};

/// Somebody who waits for the tools that one thread runs, and may have enough of it.
class ToolWatch {
  public:
    virtual ~ToolWatch() = default;

    /// False: nobody waits for another tool, and none is started.
    [[nodiscard]] virtual bool mayBegin() = 0;

    /// Asked several times a second while a tool runs, on the thread that runs it. False: the tool is ended.
    [[nodiscard]] virtual bool mayGoOn(const ToolAtWork& tool) = 0;

    /// The tool has ended, by itself or not.
    virtual void ended() {}
};

/// Has `watch` asked about every tool that this thread runs, for a scope.
class ToolWatchScope {
  public:
    explicit ToolWatchScope(ToolWatch& watch);
    ~ToolWatchScope();
    ToolWatchScope(const ToolWatchScope&) = delete;
    ToolWatchScope& operator=(const ToolWatchScope&) = delete;

  private:
    ToolWatch* outer_;
};

/// Says for a scope what the tools of this thread are asked about.
class ToolSubject {
  public:
    explicit ToolSubject(std::string subject);
    ~ToolSubject();
    ToolSubject(const ToolSubject&) = delete;
    ToolSubject& operator=(const ToolSubject&) = delete;

  private:
    std::string subject_;
    const std::string* outer_;
};

/// "drive 3", as a subject.
[[nodiscard]] std::string driveSubject(std::int32_t driveNumber);

/// This thread's watch; null: its tools take as long as they take.
[[nodiscard]] ToolWatch* toolWatch();

/// What this thread's tools are asked about; empty when nobody said.
[[nodiscard]] std::string toolSubject();

/// The tool that a command line starts, without folder and ".exe": "smartctl" of "smartctl.exe --scan".
[[nodiscard]] std::string toolName(std::string_view commandLine);

/// The first word of a command line, with its quotation marks taken off.
[[nodiscard]] std::string_view programWord(std::string_view commandLine);

/// "still waiting for smartctl on drive 3, 40 s".
[[nodiscard]] std::string stillWaitingText(const ToolAtWork& tool);

} // namespace torvane
