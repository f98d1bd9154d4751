#pragma once

#include <chrono>
#include <string>
#include <utility>

namespace torvane {

/// What one program of this machine has for itself while it lives: others that claim the same name are refused. Claims
/// of one program share it, on whatever threads they are made and given back.
///
/// A named object of the system stands for it, by its mere existence (CreateMutex, ERROR_ALREADY_EXISTS). Nobody waits
/// for it or owns it, because a mutex belongs to the thread that has taken it, and a job is begun on one thread and
/// ended on another. The system takes it away with the program's last handle, so that one that crashed leaves nothing.
class MachineClaim {
  public:
    MachineClaim() = default; ///< of nothing
    explicit MachineClaim(std::wstring name) : name_(std::move(name)) {}
    MachineClaim(MachineClaim&& other) noexcept;
    MachineClaim& operator=(MachineClaim&& other) noexcept;
    MachineClaim(const MachineClaim&) = delete;
    MachineClaim& operator=(const MachineClaim&) = delete;
    ~MachineClaim();

    /// Claims the name, for all programs of all users ("Global\\<name>"). False when another program has it, also one
    /// of a user whose objects may not be opened. Where the system gives no such object at all, the claim is made.
    [[nodiscard]] bool claim();
    /// The same, again and again until another program has given it back or the time is over. Whoever waits already is
    /// let through first, so that a program which claims a name many times in a row keeps nobody out.
    [[nodiscard]] bool await(std::chrono::milliseconds limit);

  private:
    void giveBack();

    std::wstring name_;
    bool held_ = false;
};

} // namespace torvane
