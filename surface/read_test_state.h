#pragma once

#include <atomic>
#include <cstdint>

namespace torvane {

/// The read tests' share of the application state.
///
/// Closing the dialog does not wait for its test, so several runs may be at work at a time: those that were told to
/// stop and still have a read in flight, Short tests, which cannot be stopped, and whatever "Start Testing" started
/// twice.
struct ReadTestState {
    /// Runs whose thread has not done its last work. The drive records stay in use until it is 0.
    std::atomic<std::int32_t> workersAtWork{0};
    std::atomic<std::int32_t> lastRun{0};     ///< number of the run that was started last; they count from 1
    std::atomic<std::int32_t> lastStopped{0}; ///< all runs up to this number were told to stop, for good

    // Critical and NIST tests, which the job-running flag stops.
    std::atomic<std::int32_t> jobRunsAtWork{0}; ///< how many of the runs at work are of these
    std::atomic<std::int32_t> lastJobRun{0};    ///< number of the last of these
};

/// True while a Critical or NIST test is at work that nobody has told to stop: the job-running flag is its own.
[[nodiscard]] inline bool readTestHoldsJobFlag(const ReadTestState& tests) {
    return tests.jobRunsAtWork != 0 && tests.lastJobRun > tests.lastStopped;
}

/// Whether one run of a test goes on. It is stopped by the job-running flag, and stays stopped when another job raises
/// that flag before the run has noticed.
class ReadTestSwitch {
  public:
    ReadTestSwitch(std::atomic<std::int32_t>& jobActive, const std::atomic<std::int32_t>& lastStopped, std::int32_t run)
        : jobActive_(jobActive), lastStopped_(lastStopped), run_(run) {}

    [[nodiscard]] bool isOn() const { return jobActive_ != 0 && !wasStopped(); }

    /// Clears the job-running flag at the run's end. A run that was told to stop leaves it alone: it was cleared then,
    /// and may be another job's by now.
    void turnOff() const {
        if (!wasStopped()) {
            jobActive_ = 0;
        }
    }

  private:
    [[nodiscard]] bool wasStopped() const { return run_ <= lastStopped_; }

    std::atomic<std::int32_t>& jobActive_;
    const std::atomic<std::int32_t>& lastStopped_;
    std::int32_t run_;
};

} // namespace torvane
