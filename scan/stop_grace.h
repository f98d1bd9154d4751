#pragma once

#include <chrono>
#include <optional>

namespace torvane {

class JobClaim;

/// How long a tool of a scan that was asked to stop may go on: one that is about to finish gets five seconds for it.
class StopGrace {
  public:
    explicit StopGrace(const JobClaim& claim) : claim_(claim) {}

    /// False once it is over for the tool at work, which has run for so long.
    [[nodiscard]] bool lasts(std::chrono::milliseconds runsSince);

    /// The tool has ended.
    void ended() { stopSeen_.reset(); }

  private:
    const JobClaim& claim_;
    std::optional<std::chrono::milliseconds> stopSeen_; ///< how long the tool had run by then
};

} // namespace torvane
