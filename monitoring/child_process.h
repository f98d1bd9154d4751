#pragma once

#include "base/owned_handle.h"

#include <chrono>
#include <string>

namespace torvane {

/// A tool that was started, with everything that it starts in its turn. It goes on when this object goes, unless
/// somebody watches it: what a user watches ends with the program.
class ChildProcess {
  public:
    /// Starts the command without a window, its output and errors going to `output`, which must be inheritable, and its
    /// input being empty; of our handles it inherits that one alone. `application`: the program's path; empty when the
    /// command line names it. `watched`: see above. Not started: it is false then.
    ChildProcess(const std::string& application, const char* commandLine, HANDLE output, bool watched);
    ChildProcess() = default;
    ChildProcess(ChildProcess&&) = default;
    ChildProcess& operator=(ChildProcess&&) = default;
    ~ChildProcess() = default;

    [[nodiscard]] explicit operator bool() const { return static_cast<bool>(process_); }

    /// True once it has ended; waits for that as long as is said. Without a limit: however long it takes.
    [[nodiscard]] bool awaitEnd(std::chrono::milliseconds limit) const;
    void awaitEnd() const;

    /// Ends it and what it has started.
    void kill();
    /// The same, and gives them a second to be gone: a process that a driver holds goes only when the driver lets go
    /// of it, and is not waited for.
    void end();

    /// What it has started may outlive the program from now on.
    void letGo();

  private:
    UniqueHandle process_;
    UniqueHandle group_; ///< the job object of a watched one
};

} // namespace torvane
