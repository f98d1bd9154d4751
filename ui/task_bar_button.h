#pragma once

#include <cstdint>
#include <memory>

namespace torvane {

/// How the program's button on the task bar shows progress.
enum class TaskBarState : std::uint8_t { kNone, kNormal, kError };

struct TaskBarProgress {
    TaskBarState state = TaskBarState::kNone;
    std::uint64_t done = 0; ///< of `total`, in any unit
    std::uint64_t total = 0;

    bool operator==(const TaskBarProgress&) const = default;
};

/// What is asked of the system's task bar.
class TaskBar {
  public:
    virtual ~TaskBar() = default;
    virtual void setState(TaskBarState state) = 0;
    virtual void setValue(std::uint64_t done, std::uint64_t total) = 0;
};

/// The program's button on the task bar. It may come later than the program, go and come again with the task bar, and
/// there may be none: then nothing happens. The window's thread alone uses it.
class TaskBarButton {
  public:
    /// The button is there, and knows nothing yet; null: it has gone, or cannot show anything.
    void attach(std::unique_ptr<TaskBar> bar);

    /// Shows this from now on. What is shown already is not told again.
    void show(const TaskBarProgress& progress);

  private:
    void tell();

    std::unique_ptr<TaskBar> bar_;
    TaskBarProgress wanted_;
    TaskBarProgress told_;
};

} // namespace torvane
